#include <OpenSG/OSGNode.h>

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

OSG_END_NAMESPACE
