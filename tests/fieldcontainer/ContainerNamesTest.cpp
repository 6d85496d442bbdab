// Names every OpenSG container class has: getClassname, <Class>NodePtr and
// <Class>RefPtr, both accessor families, MFBool's element accessors, and an
// application's own simple attachment through OpenSG's macros.
#include <OpenSG/OSGFBOViewport.h>
#include <OpenSG/OSGFieldKindsTestCore.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGSimpleAttachments.h>
#include <OpenSG/OSGTextureChunk.h>
#include <OpenSG/OSGTransform.h>

#include <gtest/gtest.h>

#include <type_traits>

OSG_USING_NAMESPACE

// An attachment of the application's own, written as OpenSG's attachment
// tutorial writes it.
struct MyAttachmentDesc
{
    typedef SFInt32 FieldTypeT;

    static const Char8 *getTypeName(void) { return "My"; }
    static const Char8 *getFieldName(void) { return "my"; }
    static const Char8 *getGroupName(void) { return "my"; }
    static const Char8 *getClassName(void) { return "MyAttachment"; }
    static const Char8 *getParentTypeName(void) { return "Attachment"; }
    static InitContainerF getInitMethod(void) { return NULL; }
    static FieldDescription **getDesc(void) { return _desc; }

  private:
    static FieldDescription *_desc[];
};

FieldDescription *MyAttachmentDesc::_desc[] = {
    new FieldDescription(FieldTypeT::getClassType(), getFieldName(),
                         OSG_FC_FIELD_IDM_DESC(SimpleAttachment<MyAttachmentDesc>::SimpleField),
                         false,
                         (FieldAccessMethod)&SimpleAttachment<MyAttachmentDesc>::getFieldPtr)};

typedef SimpleAttachment<MyAttachmentDesc> MyAttachment;

OSG_FC_DLLEXPORT_DEF(SimpleAttachment, MyAttachmentDesc, )

typedef FCPtr<AttachmentPtr, MyAttachment> MyAttachmentPtr;

TEST(ContainerNames, ClassnameNodePtrAndRefPtr)
{
    EXPECT_STREQ(Group::getClassname(), "Group");
    EXPECT_STREQ(Transform::getClassname(), "Transform");
    EXPECT_STREQ(FBOViewport::getClassname(), "FBOViewport");

    EXPECT_TRUE((std::is_same<TransformNodePtr, CoredNodePtr<Transform> >::value));
    EXPECT_TRUE((std::is_same<GroupRefPtr, RefPtr<GroupPtr> >::value));
    EXPECT_TRUE((std::is_same<TransformBaseP, TransformBase *>::value));
    // a type that is no node core has no cored node pointer
    EXPECT_FALSE((std::is_same<FBOViewportNodePtr, CoredNodePtr<FBOViewport> >::value));
}

TEST(ContainerNames, EditAccessorsOfTheWindowTypes)
{
    FBOViewportPtr fbo = FBOViewport::create();
    addRefCP(fbo);
    TextureChunkPtr tex = TextureChunk::create();
    addRefCP(tex); // the viewport's list holds no reference
    beginEditCP(fbo, FBOViewport::TexturesFieldMask);
    fbo->editMFTextures()->push_back(tex);
    endEditCP(fbo, FBOViewport::TexturesFieldMask);
    EXPECT_EQ(fbo->getTextures(0), tex);
    EXPECT_EQ(fbo->editMFTextures(), fbo->getMFTextures());
    fbo->editStorageWidth() = 64;
    EXPECT_EQ(fbo->getStorageWidth(), 64);
    const FBOViewport *cfbo = fbo.getCPtr();
    EXPECT_EQ(cfbo->getMFTextures()->size(), 1u);
    subRefCP(fbo);
    subRefCP(tex);
}

TEST(ContainerNames, MFBoolElementsAreBits)
{
    FieldKindsTestCorePtr core = FieldKindsTestCore::create();
    addRefCP(core);
    core->getFlags().push_back(false);
    core->getFlags().push_back(true);

    // the accessors hand out std::vector<bool>'s proxies, which assign
    core->getFlags(0) = true;
    core->editFlags(1) = false;
    EXPECT_TRUE(core->getFlags(0));
    EXPECT_FALSE(core->getFlags(1));
    const FieldKindsTestCore *c = core.getCPtr();
    EXPECT_TRUE(c->getFlags(0));
    EXPECT_TRUE((std::is_same<MFBool::StorageType, std::vector<bool> >::value));
    subRefCP(core);
}

TEST(ContainerNames, ApplicationsOwnSimpleAttachment)
{
    EXPECT_STREQ(MyAttachment::getClassType().getCName(), "My");
    EXPECT_EQ(MyAttachment::SimpleFieldMask, BitVector(1) << 3);

    MyAttachmentPtr att = MyAttachment::create();
    ASSERT_NE(att, NullFC);
    beginEditCP(att);
    att->getField().setValue(42);
    endEditCP(att);

    NodePtr node = Node::create();
    addRefCP(node);
    beginEditCP(node, Node::AttachmentsFieldMask);
    node->addAttachment(att);
    endEditCP(node, Node::AttachmentsFieldMask);

    MyAttachmentPtr found =
        MyAttachmentPtr::dcast(node->findAttachment(MyAttachment::getClassType()));
    ASSERT_EQ(found, att);
    EXPECT_EQ(found->getField().getValue(), 42);
    // the field is reachable by name too, through its description
    SFInt32 *field = dynamic_cast<SFInt32 *>(FieldContainerPtr(found)->getField("my"));
    ASSERT_NE(field, nullptr);
    EXPECT_EQ(field->getValue(), 42);
    subRefCP(node);
}
