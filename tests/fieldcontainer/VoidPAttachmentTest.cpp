// VoidPAttachment: an application pointer hung on a node, found again by
// its type and read back; the SFVoidP field behind it.
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGSimpleAttachments.h>

#include <gtest/gtest.h>

using namespace osg;

TEST(VoidPAttachment, StoresAnApplicationPointerOnAContainer)
{
    NodePtr node = Node::create();
    addRefCP(node);
    beginEditCP(node, Node::CoreFieldMask);
    node->setCore(Group::create());
    endEditCP(node, Node::CoreFieldMask);

    UInt32             value = 42;
    VoidPAttachmentPtr att   = VoidPAttachment::create();
    ASSERT_NE(att, NullFC);
    EXPECT_EQ(att->getField().getValue(), nullptr);
    beginEditCP(att);
    att->getField().setValue(&value);
    endEditCP(att);
    beginEditCP(node, Node::AttachmentsFieldMask);
    node->addAttachment(att);
    endEditCP(node, Node::AttachmentsFieldMask);

    AttachmentPtr found = node->findAttachment(VoidPAttachment::getClassType());
    ASSERT_NE(found, NullFC);
    VoidPAttachmentPtr back = VoidPAttachmentPtr::dcast(found);
    ASSERT_NE(back, NullFC);
    EXPECT_EQ(*static_cast<UInt32 *>(back->getField().getValue()), 42u);
    EXPECT_EQ(getVoidP(node), &value);

    // the type and its field as the type system shows them
    EXPECT_STREQ(VoidPAttachment::getClassType().getCName(), "VoidPAttachment");
    EXPECT_TRUE(VoidPAttachment::getClassType().isDerivedFrom(Attachment::getClassType()));
    const FieldDescription *desc = VoidPAttachment::getClassType().findFieldDescription("data");
    ASSERT_NE(desc, nullptr);
    EXPECT_STREQ(desc->getFieldType().getCName(), "SFVoidP");
    EXPECT_EQ(desc->getFieldId(), VoidPAttachment::SimpleFieldId);
    EXPECT_STREQ(SFVoidP::getClassType().getContentType().getCName(), "VoidP");

    // setVoidP replaces the pointer in place, and a node without one gives NULL
    UInt32 other = 7;
    setVoidP(node, &other);
    EXPECT_EQ(back->getField().getValue(), &other);
    EXPECT_EQ(node->getSFAttachments()->getValue().size(), 1u);
    NodePtr bare = Node::create();
    addRefCP(bare);
    EXPECT_EQ(getVoidP(bare), nullptr);
    setVoidP(bare, &value, true);
    EXPECT_EQ(getVoidP(bare), &value);
    EXPECT_TRUE(VoidPAttachmentPtr::dcast(bare->findAttachment(VoidPAttachment::getClassType()))
                    ->getInternal());
    EXPECT_EQ(getVoidP(NullFC), nullptr);

    subRefCP(bare);
    subRefCP(node);
}
