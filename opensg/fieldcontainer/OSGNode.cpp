#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGBinaryDataHandler.h>
#include <OpenSG/OSGFieldContainerFactory.h>
#include <OpenSG/OSGFieldDescription.h>

#include <cstring>
#include <map>
#include <ostream>

OSG_BEGIN_NAMESPACE

DataType FieldDataTraits<NodePtr>::_type("NodePtr", "AttachmentContainerPtr");

template <>
const FieldType SField<NodePtr, 0>::_fieldType("SFNodePtr", "Field",
                                               FieldDataTraits<NodePtr>::getType(),
                                               SField<NodePtr, 0>::create,
                                               FieldType::SINGLE_FIELD);

template <>
const FieldType MField<NodePtr, 0>::_fieldType("MFNodePtr", "Field",
                                               FieldDataTraits<NodePtr>::getType(),
                                               MField<NodePtr, 0>::create,
                                               FieldType::MULTI_FIELD);

std::ostream &operator<<(std::ostream &os, const NodePtr &fc)
{
    writePtr(os, "NodePtr", fc);
    return os;
}

std::ostream &operator<<(std::ostream &os, const CNodePtr &fc)
{
    writePtr(os, "NodePtr", fc);
    return os;
}

Node::Node(void) : Inherited(), _occlusionMask(0)
{
}

Node::Node(const Node &source) : Inherited(source), _occlusionMask(source._occlusionMask)
{
    _sfParent.setValue(NullFC);
    _mfChildren.clear();
    _sfCore.setValue(NullFC);
}

Node::~Node(void)
{
}

void Node::initMethod(void)
{
}

NodePtr Node::getPtr(void)
{
    return NodePtr(this);
}

void Node::onCreate(const Node *source)
{
    if(source == NULL)
        return;
    setCore(source->getCore());
    AttachmentContainer::onCreate(source);
}

void Node::onDestroy(void)
{
    NodePtr thisP = getPtr();

    NodeCorePtr core = _sfCore.getValue();
    if(core != NullFC)
    {
        _sfCore.setValue(NullFC);
        beginEditCP(core, NodeCore::ParentsFieldMask);
        core->subParent(thisP);
        endEditCP(core, NodeCore::ParentsFieldMask);
        subRefCP(core);
    }

    MFNodePtr children;
    children.swap(_mfChildren);
    for(UInt32 i = 0; i < children.size(); ++i)
    {
        NodePtr child = children[i];
        beginEditCP(child, ParentFieldMask);
        child->setParent(NullFC);
        endEditCP(child, ParentFieldMask);
        subRefCP(child);
    }

    Inherited::onDestroy();
}

void Node::setCore(const NodeCorePtr &core)
{
    NodePtr thisP = getPtr();

    addRefCP(core);

    NodeCorePtr old = _sfCore.getValue();
    if(old != NullFC)
    {
        beginEditCP(old, NodeCore::ParentsFieldMask);
        old->subParent(thisP);
        endEditCP(old, NodeCore::ParentsFieldMask);
        subRefCP(old);
    }

    _sfCore.setValue(core);

    if(core != NullFC)
    {
        beginEditCP(core, NodeCore::ParentsFieldMask);
        core->addParent(thisP);
        endEditCP(core, NodeCore::ParentsFieldMask);
    }

    invalidateVolume();
}

void Node::setParent(const NodePtr &parent)
{
    _sfParent.setValue(parent);
}

void Node::addChild(const NodePtr &childP)
{
    if(childP == NullFC)
        return;

    // the reference comes first, so re-adding a child to its own parent
    // does not destroy it on the way
    addRefCP(childP);

    NodePtr oldParent = childP->getParent();
    if(oldParent != NullFC)
    {
        beginEditCP(oldParent, ChildrenFieldMask);
        oldParent->subChild(childP);
        endEditCP(oldParent, ChildrenFieldMask);
    }

    _mfChildren.push_back(childP);

    beginEditCP(childP, ParentFieldMask);
    childP->setParent(getPtr());
    endEditCP(childP, ParentFieldMask);

    invalidateVolume();
}

void Node::insertChild(UInt32 childIndex, const NodePtr &childP)
{
    if(childP != NullFC)
    {
        addRefCP(childP);

        NodePtr oldParent = childP->getParent();
        if(oldParent != NullFC)
        {
            beginEditCP(oldParent, ChildrenFieldMask);
            oldParent->subChild(childP);
            endEditCP(oldParent, ChildrenFieldMask);
        }

        if(childIndex > _mfChildren.size())
            childIndex = _mfChildren.size();
        _mfChildren.insert(_mfChildren.begin() + childIndex, childP);

        beginEditCP(childP, ParentFieldMask);
        childP->setParent(getPtr());
        endEditCP(childP, ParentFieldMask);
    }
    invalidateVolume();
}

void Node::replaceChild(UInt32 childIndex, const NodePtr &childP)
{
    if(childP != NullFC && childIndex < _mfChildren.size())
    {
        addRefCP(childP);

        NodePtr oldParent = childP->getParent();
        if(oldParent != NullFC)
        {
            beginEditCP(oldParent, ChildrenFieldMask);
            oldParent->subChild(childP);
            endEditCP(oldParent, ChildrenFieldMask);
        }

        // the new child may have been before the old one in this very list
        if(childIndex >= _mfChildren.size())
        {
            subRefCP(childP);
            invalidateVolume();
            return;
        }

        NodePtr oldChild = _mfChildren[childIndex];
        beginEditCP(oldChild, ParentFieldMask);
        oldChild->setParent(NullFC);
        endEditCP(oldChild, ParentFieldMask);
        subRefCP(oldChild);

        _mfChildren[childIndex] = childP;

        beginEditCP(childP, ParentFieldMask);
        childP->setParent(getPtr());
        endEditCP(childP, ParentFieldMask);
    }
    invalidateVolume();
}

bool Node::replaceChildBy(const NodePtr &childP, const NodePtr &newChildP)
{
    Int32 index = findChild(childP);
    if(newChildP == NullFC || index < 0)
        return false;
    replaceChild(UInt32(index), newChildP);
    return true;
}

Int32 Node::findChild(const NodePtr &childP) const
{
    for(UInt32 i = 0; i < _mfChildren.size(); ++i)
        if(_mfChildren[i] == childP)
            return Int32(i);
    return -1;
}

void Node::subChild(const NodePtr &childP)
{
    Int32 index = findChild(childP);
    if(index >= 0)
    {
        subChild(UInt32(index));
        return;
    }
    SWARNING << "Node(" << this << ")::subChild: " << childP << " is not one of my children!"
             << std::endl;
    invalidateVolume();
}

void Node::subChild(UInt32 childIndex)
{
    if(childIndex < _mfChildren.size())
    {
        NodePtr child = _mfChildren[childIndex];
        beginEditCP(child, ParentFieldMask);
        child->setParent(NullFC);
        endEditCP(child, ParentFieldMask);
        // released before the entry goes: a child held only by this list
        // is destroyed here
        subRefCP(child);
        _mfChildren.erase(_mfChildren.begin() + childIndex);
    }
    invalidateVolume();
}

Matrix Node::getToWorld(void)
{
    Matrix result;
    getToWorld(result);
    return result;
}

void Node::getToWorld(Matrix &result)
{
    if(getParent() != NullFC)
        getParent()->getToWorld(result);
    else
        result.setIdentity();

    if(getCore() != NullFC)
        getCore()->accumulateMatrix(result);
}

DynamicVolume &Node::getVolume(bool update)
{
    if(update)
        updateVolume();
    return _sfVolume.getValue();
}

void Node::getWorldVolume(DynamicVolume &result)
{
    updateVolume();
    result = _sfVolume.getValue();
    if(getParent() != NullFC)
    {
        Matrix m = getParent()->getToWorld();
        result.transform(m);
    }
}

void Node::updateVolume(void)
{
    if(_sfVolume.getValue().isValid() || getTravMask() == 0)
        return;

    DynamicVolume vol = _sfVolume.getValue();
    vol.getInstance().setEmpty();

    for(UInt32 i = 0; i < _mfChildren.size(); ++i)
    {
        NodePtr child = _mfChildren[i];
        if(child != NullFC && child->getTravMask() != 0)
        {
            child->updateVolume();
            vol.getInstance().extendBy(child->getVolume());
        }
    }

    if(getCore() != NullFC)
        getCore()->adjustVolume(vol.getInstance());

    vol.instanceChanged();

    NodePtr thisP = getPtr();
    beginEditCP(thisP, VolumeFieldMask);
    _sfVolume.setValue(vol);
    endEditCP(thisP, VolumeFieldMask);
}

void Node::invalidateVolume(void)
{
    DynamicVolume &vol = _sfVolume.getValue();
    if(vol.isValid() && !vol.isStatic())
    {
        NodePtr thisP = getPtr();
        beginEditCP(thisP, VolumeFieldMask);
        vol.setValid(false);
        endEditCP(thisP, VolumeFieldMask);

        if(getParent() != NullFC)
            getParent()->invalidateVolume();
    }
}

NodePtr Node::clone(void)
{
    return cloneTree(getPtr());
}

void Node::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);

    bool incRef = (origin & ChangedOrigin::Abstract) && (origin & ChangedOrigin::AbstrIncRefCount);

    if(whichField & CoreFieldMask)
    {
        invalidateVolume();
        if(incRef)
            addRefCP(getCore());
    }

    if(whichField & TravMaskFieldMask)
    {
        NodePtr parent = getParent();
        if(parent != NullFC)
        {
            beginEditCP(parent, VolumeFieldMask);
            parent->invalidateVolume();
            endEditCP(parent, VolumeFieldMask);
        }
        else
        {
            invalidateVolume();
        }
    }

    if(whichField & ChildrenFieldMask)
    {
        invalidateVolume();
        if(incRef)
            for(UInt32 i = 0; i < _mfChildren.size(); ++i)
                addRefCP(_mfChildren[i]);
    }
}

void Node::dump(UInt32 uiIndent, const BitVector bvFlags) const
{
    indentLog(uiIndent, PLOG);
    PLOG << "Node : " << _mfChildren.size() << " children" << std::endl;
    if(getCore() != NullFC)
        getCore()->dump(uiIndent + 4, bvFlags);
    for(UInt32 i = 0; i < _mfChildren.size(); ++i)
        _mfChildren[i]->dump(uiIndent + 4, bvFlags);
}

NodePtr cloneTree(const NodePtr &root)
{
    if(root == NullFC)
        return NodePtr();

    NodePtr clone = Node::create();
    beginEditCP(clone);
    clone->setTravMask(root->getTravMask());
    clone->setCore(root->getCore());
    for(UInt32 i = 0; i < root->getNChildren(); ++i)
        clone->addChild(cloneTree(root->getChild(i)));
    endEditCP(clone);
    return clone;
}

NodePtr makeNodeFor(NodeCorePtr core)
{
    NodePtr node = Node::create();
    beginEditCP(node, Node::CoreFieldMask);
    node->setCore(core);
    endEditCP(node, Node::CoreFieldMask);
    return node;
}

// --- deep copies -------------------------------------------------------------------------

namespace
{

/// Carries the binary form of one field from a container to another; pointer
/// fields travel as container ids, which is how their elements are reached
/// whatever their pointer type.
class FieldIdBuffer : public BinaryDataHandler
{
  public:
    FieldIdBuffer(void) : BinaryDataHandler(0, true), _buffer(256), _readPos(0)
    {
        writeBufAdd(_buffer.data(), UInt32(_buffer.size()));
        readBufAdd(_buffer.data(), UInt32(_buffer.size()));
    }

  protected:
    virtual void write(MemoryHandle src, UInt32 size)
    {
        _bytes.insert(_bytes.end(), src, src + size);
    }

    virtual void read(MemoryHandle dst, UInt32 size)
    {
        UInt32 avail = UInt32(_bytes.size() - _readPos);
        UInt32 n     = size < avail ? size : avail;
        std::memcpy(dst, _bytes.data() + _readPos, n);
        _readPos += n;
        if(n < size)
        {
            std::memset(dst + n, 0, size - n);
            _readError = true;
        }
    }

  private:
    std::vector<UInt8> _buffer;
    std::vector<UInt8> _bytes;
    size_t             _readPos;
};

/// The containers a pointer field of fc holds.
std::vector<FieldContainerPtr> pointerFieldValues(const FieldContainerPtr &fc, BitVector mask,
                                                  bool single)
{
    FieldIdBuffer buf;
    fc->copyToBin(buf, mask);
    buf.flush();

    UInt32 count = 1;
    if(!single)
        buf.getValue(count);
    std::vector<FieldContainerPtr> values;
    for(UInt32 i = 0; i < count && !buf.hasReadError(); ++i)
    {
        UInt32 id = 0;
        buf.getValue(id);
        values.push_back(FieldContainerFactory::the()->getContainer(id));
    }
    return values;
}

/// Stores the containers into a pointer field of fc, as they are (no
/// reference counting, no parent links).
void setPointerFieldValues(const FieldContainerPtr &fc, BitVector mask, bool single,
                           const std::vector<FieldContainerPtr> &values)
{
    FieldIdBuffer buf;
    if(!single)
        buf.putValue(UInt32(values.size()));
    for(size_t i = 0; i < values.size(); ++i)
        buf.putValue(values[i] != NullFC ? values[i].getFieldContainerId() : UInt32(0));
    buf.flush();
    fc->copyFromBin(buf, mask);
}

bool isShared(const FieldContainerPtr &fc, const std::vector<std::string> &share)
{
    for(size_t i = 0; i < share.size(); ++i)
    {
        FieldContainerType *type = FieldContainerFactory::the()->findType(share[i].c_str());
        if(type != NULL && fc->getType().isDerivedFrom(*type))
            return true;
    }
    return false;
}

/// Containers being copied, with their copies: a pointer back to one of
/// them (a cycle) gets the copy under construction instead of a new copy.
typedef std::map<FieldContainerPtr, FieldContainerPtr> CloneMap;

FieldContainerPtr deepCloneImpl(const FieldContainerPtr &src, const std::vector<std::string> &share,
                                CloneMap &inProgress);
void deepCloneAttachmentsImpl(const AttachmentContainerPtr &src, AttachmentContainerPtr &dst,
                              const std::vector<std::string> &share, CloneMap &inProgress);

FieldContainerPtr shareOrClone(const FieldContainerPtr &fc, const std::vector<std::string> &share,
                               CloneMap &inProgress)
{
    if(fc == NullFC || isShared(fc, share))
        return fc;
    CloneMap::const_iterator cycle = inProgress.find(fc);
    if(cycle != inProgress.end())
        return cycle->second;
    return deepCloneImpl(fc, share, inProgress);
}

std::vector<std::string> shareNames(const std::vector<UInt16> &shareGroupIds)
{
    std::vector<std::string> names;
    for(size_t i = 0; i < shareGroupIds.size(); ++i)
    {
        const Char8 *name = FieldContainerFactory::the()->findGroupName(shareGroupIds[i]);
        if(name != NULL)
            names.push_back(name);
    }
    return names;
}

/// "a, b,c" -> {"a", "b", "c"}: blanks before each name are skipped.
std::vector<std::string> shareNames(const std::string &shareString)
{
    std::vector<std::string> names;
    size_t                   pos = 0;
    while(pos < shareString.size())
    {
        size_t end = shareString.find(',', pos);
        if(end == std::string::npos)
            end = shareString.size();
        size_t first = shareString.find_first_not_of(' ', pos);
        if(first != std::string::npos && first < end)
            names.push_back(shareString.substr(first, end - first));
        pos = end + 1;
    }
    return names;
}

FieldContainerPtr deepCloneImpl(const FieldContainerPtr &src, const std::vector<std::string> &share,
                                CloneMap &inProgress)
{
    if(src == NullFC)
        return NullFC;

    const FieldContainerType &srcType = src->getType();
    FieldContainerPtr dst = FieldContainerFactory::the()->createFieldContainer(srcType.getCName());
    if(dst == NullFC)
        return NullFC;
    inProgress[src] = dst;

    UInt32 fcount = std::min(srcType.getNumFieldDescs(), dst->getType().getNumFieldDescs());
    for(UInt32 id = 1; id <= fcount; ++id)
    {
        const FieldDescription *desc = srcType.getFieldDescription(id);
        if(desc == NULL || desc->isInternal() || std::strcmp(desc->getCName(), "parents") == 0)
            continue;

        Field    *srcField = src->getField(id);
        Field    *dstField = dst->getField(id);
        BitVector mask     = desc->getFieldMask();
        if(srcField == NULL || dstField == NULL)
            continue;

        if(std::strcmp(desc->getCName(), "attachments") == 0)
        {
            AttachmentContainerPtr srcAC = AttachmentContainerPtr::dcast(src);
            AttachmentContainerPtr dstAC = AttachmentContainerPtr::dcast(dst);
            deepCloneAttachmentsImpl(srcAC, dstAC, share, inProgress);
        }
        else if(std::strstr(srcField->getType().getCName(), "Ptr") == NULL)
        {
            beginEditCP(dst, mask);
            dstField->setAbstrValue(*srcField);
            endEditCP(dst, mask);
        }
        else if(srcField->getCardinality() == FieldType::SINGLE_FIELD)
        {
            std::vector<FieldContainerPtr> value = pointerFieldValues(src, mask, true);
            FieldContainerPtr clone = value.empty() ? FieldContainerPtr() : shareOrClone(value[0], share, inProgress);
            if(clone != NullFC)
            {
                addRefCP(clone);
                beginEditCP(dst);
                setPointerFieldValues(dst, mask, true, std::vector<FieldContainerPtr>(1, clone));
                endEditCP(dst);
            }
        }
        else
        {
            std::vector<FieldContainerPtr> values = pointerFieldValues(src, mask, false);
            std::vector<FieldContainerPtr> result = pointerFieldValues(dst, mask, false);
            for(size_t i = 0; i < values.size(); ++i)
            {
                FieldContainerPtr clone = shareOrClone(values[i], share, inProgress);
                if(clone != NullFC)
                {
                    addRefCP(clone);
                    result.push_back(clone);
                }
            }
            beginEditCP(dst, mask);
            setPointerFieldValues(dst, mask, false, result);
            endEditCP(dst, mask);
        }
    }
    inProgress.erase(src);
    return dst;
}

void deepCloneAttachmentsImpl(const AttachmentContainerPtr &src, AttachmentContainerPtr &dst,
                              const std::vector<std::string> &share, CloneMap &inProgress)
{
    if(src == NullFC || dst == NullFC)
        return;

    // a copy of the map: copying may add attachments to what src points to
    AttachmentMap attachments = src->getAttachments();
    beginEditCP(dst, AttachmentContainer::AttachmentsFieldMask);
    for(AttachmentMap::const_iterator it = attachments.begin(); it != attachments.end(); ++it)
    {
        AttachmentPtr att = AttachmentPtr::dcast(shareOrClone(it->second, share, inProgress));
        if(att != NullFC)
            dst->addAttachment(att);
    }
    endEditCP(dst, AttachmentContainer::AttachmentsFieldMask);
}

} // namespace

FieldContainerPtr deepClone(const FieldContainerPtr &src, const std::vector<std::string> &share)
{
    CloneMap inProgress;
    return deepCloneImpl(src, share, inProgress);
}


FieldContainerPtr deepClone(const FieldContainerPtr &src, const std::vector<UInt16> &shareGroupIds)
{
    return deepClone(src, shareNames(shareGroupIds));
}

FieldContainerPtr deepClone(const FieldContainerPtr &src, const std::string &shareString)
{
    return deepClone(src, shareNames(shareString));
}

void deepCloneAttachments(const AttachmentContainerPtr &src, AttachmentContainerPtr &dst,
                          const std::vector<std::string> &share)
{
    CloneMap inProgress;
    deepCloneAttachmentsImpl(src, dst, share, inProgress);
}

void deepCloneAttachments(const AttachmentContainerPtr &src, AttachmentContainerPtr &dst,
                          const std::vector<UInt16> &shareGroupIds)
{
    deepCloneAttachments(src, dst, shareNames(shareGroupIds));
}

void deepCloneAttachments(const AttachmentContainerPtr &src, AttachmentContainerPtr &dst,
                          const std::string &shareString)
{
    deepCloneAttachments(src, dst, shareNames(shareString));
}

NodePtr deepCloneTree(const NodePtr &src, const std::vector<std::string> &share)
{
    if(src == NullFC)
        return NullFC;

    NodePtr                dst = Node::create();
    AttachmentContainerPtr ac  = dst;
    deepCloneAttachments(src, ac, share);

    beginEditCP(dst);
    dst->setActive(src->getActive());
    dst->setTravMask(src->getTravMask());
    dst->setCore(NodeCorePtr::dcast(deepClone(src->getCore(), share)));
    for(UInt32 i = 0; i < src->getNChildren(); ++i)
        dst->addChild(deepCloneTree(src->getChild(i), share));
    endEditCP(dst);
    return dst;
}

NodePtr deepCloneTree(const NodePtr &src, const std::vector<UInt16> &shareGroupIds)
{
    return deepCloneTree(src, shareNames(shareGroupIds));
}

NodePtr deepCloneTree(const NodePtr &src, const std::string &shareString)
{
    return deepCloneTree(src, shareNames(shareString));
}

OSG_END_NAMESPACE
