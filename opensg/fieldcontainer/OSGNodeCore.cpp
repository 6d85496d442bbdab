#include <OpenSG/OSGNodeCore.h>
#include <OpenSG/OSGNode.h>

OSG_BEGIN_NAMESPACE

NodeCore::NodeCore(void) : Inherited()
{
}

NodeCore::NodeCore(const NodeCore &source) : Inherited(source)
{
    _parents.clear();
}

NodeCore::~NodeCore(void)
{
}

void NodeCore::initMethod(void)
{
}

void NodeCore::invalidateVolume(void)
{
    for(UInt32 i = 0; i < _parents.size(); ++i)
        _parents[i]->invalidateVolume();
}

void NodeCore::accumulateMatrix(Matrix &)
{
}

void NodeCore::adjustVolume(Volume &)
{
}

void NodeCore::addParent(const NodePtr &parent)
{
    _parents.push_back(parent);
}

void NodeCore::subParent(const NodePtr &parent)
{
    MFNodePtr::iterator it = _parents.find(parent);
    if(it != _parents.end())
        _parents.erase(it);
}

NodeCorePtr NodeCore::getPtr(void)
{
    return NodeCorePtr(this);
}

void NodeCore::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void NodeCore::dump(UInt32 uiIndent, const BitVector bvFlags) const
{
    indentLog(uiIndent, PLOG);
    PLOG << "Core : " << getType().getName() << " " << _parents.size() << " parents" << std::endl;
    Inherited::dump(uiIndent + 4, bvFlags);
}

OSG_END_NAMESPACE
