#include <OpenSG/OSGChangeList.h>
#include <OpenSG/OSGFieldContainer.h>
#include <OpenSG/OSGThread.h>

#include <cstdio>

OSG_BEGIN_NAMESPACE

ChangeList::ChangeList(void) : _uiAspectId(0), _mode(Private), _bReadOnly(false)
{
}

ChangeList::~ChangeList(void)
{
}

void ChangeList::addChanged(const FieldContainerPtr &ptr, BitVector whichField)
{
    if(!_bReadOnly)
        _changedFieldContainers.push_back(ChangeEntry(ptr.getFieldContainerId(), whichField));
}

void ChangeList::addAddRefd(const FieldContainerPtr &ptr)
{
    if(!_bReadOnly)
        _addRefdFieldContainers.push_back(ptr.getFieldContainerId());
}

void ChangeList::addSubRefd(const FieldContainerPtr &ptr)
{
    if(!_bReadOnly)
        _subRefdFieldContainers.push_back(ptr.getFieldContainerId());
}

void ChangeList::addCreated(UInt32 uiContainerId)
{
    if(!_bReadOnly)
        _createdFieldContainers.push_back(uiContainerId);
}

void ChangeList::addDestroyed(UInt32 uiContainerId)
{
    if(!_bReadOnly)
        _destroyedFieldContainers.push_back(uiContainerId);
}

void ChangeList::clearAll(void)
{
    _changedFieldContainers.clear();
    _addRefdFieldContainers.clear();
    _subRefdFieldContainers.clear();
    _createdFieldContainers.clear();
    _destroyedFieldContainers.clear();
}

void ChangeList::swap(ChangeList &other)
{
    _changedFieldContainers.swap(other._changedFieldContainers);
    _addRefdFieldContainers.swap(other._addRefdFieldContainers);
    _subRefdFieldContainers.swap(other._subRefdFieldContainers);
    _createdFieldContainers.swap(other._createdFieldContainers);
    _destroyedFieldContainers.swap(other._destroyedFieldContainers);
}

bool ChangeList::merge(const ChangeList &other)
{
    _changedFieldContainers.insert(_changedFieldContainers.end(),
                                   other._changedFieldContainers.begin(),
                                   other._changedFieldContainers.end());
    _addRefdFieldContainers.insert(_addRefdFieldContainers.end(),
                                   other._addRefdFieldContainers.begin(),
                                   other._addRefdFieldContainers.end());
    _subRefdFieldContainers.insert(_subRefdFieldContainers.end(),
                                   other._subRefdFieldContainers.begin(),
                                   other._subRefdFieldContainers.end());
    _createdFieldContainers.insert(_createdFieldContainers.end(),
                                   other._createdFieldContainers.begin(),
                                   other._createdFieldContainers.end());
    _destroyedFieldContainers.insert(_destroyedFieldContainers.end(),
                                     other._destroyedFieldContainers.begin(),
                                     other._destroyedFieldContainers.end());
    return true;
}

bool ChangeList::empty(void) const
{
    return _changedFieldContainers.empty() && _addRefdFieldContainers.empty() &&
           _subRefdFieldContainers.empty() && _createdFieldContainers.empty() &&
           _destroyedFieldContainers.empty();
}

void ChangeList::setAspect(UInt32 uiAspectId)
{
    if(!empty())
        SWARNING << "ChangeList::setAspect: list not empty, cleared" << std::endl;
    clearAll();
    _uiAspectId = uiAspectId;
}

void ChangeList::doApply(UInt32 fromAspect, UInt32 toAspect)
{
    FieldContainerFactory *factory = FieldContainerFactory::the();
    ChangeList *current            = Thread::getCurrentChangeList();

    // nothing done here may record into the lists being applied
    _bReadOnly          = true;
    current->_bReadOnly = true;

    for(changed_const_iterator it = beginChanged(); it != endChanged(); ++it)
    {
        FieldContainerPtr fc = factory->getContainer(it->first);
        if(fc != NullFC)
            fc.executeSync(fromAspect, toAspect, it->second);
    }
    for(idrefd_const_iterator it = beginAddRefd(); it != endAddRefd(); ++it)
    {
        FieldContainerPtr fc = factory->getContainer(*it);
        if(fc != NullFC)
            addRefCP(fc);
    }
    for(idrefd_const_iterator it = beginSubRefd(); it != endSubRefd(); ++it)
    {
        FieldContainerPtr fc = factory->getContainer(*it);
        if(fc != NullFC)
            subRefCP(fc);
    }

    // after a sync both lists record, whatever they did before
    _bReadOnly          = false;
    current->_bReadOnly = false;
}

void ChangeList::applyTo(UInt32 uiAspectId)
{
    if(uiAspectId == _uiAspectId)
    {
        SWARNING << "Sync on the same aspect, ignored" << std::endl;
        return;
    }
    if(uiAspectId >= ThreadManager::getNumAspects())
    {
        SWARNING << "Invalid AspectId" << std::endl;
        return;
    }
    doApply(_uiAspectId, uiAspectId);
    clearAll();
}

void ChangeList::applyToCurrent(void)
{
    applyTo(Thread::getAspect());
}

void ChangeList::apply(void)
{
    if(this == Thread::getCurrentChangeList())
        SWARNING << "try to apply current changelist : ignored" << std::endl;
    if(_uiAspectId == Thread::getAspect())
        return;
    doApply(_uiAspectId, Thread::getAspect());
}

void ChangeList::applyAndClear(void)
{
    apply();
    clearAll();
}

void ChangeList::dump(void) const
{
    fprintf(stderr, "CL: %p aspect %u\n", static_cast<const void *>(this), _uiAspectId);
    for(changed_const_iterator it = beginChanged(); it != endChanged(); ++it)
        fprintf(stderr, "  changed %u mask %016llx\n", it->first, (unsigned long long)it->second);
    for(idrefd_const_iterator it = beginAddRefd(); it != endAddRefd(); ++it)
        fprintf(stderr, "  addref %u\n", *it);
    for(idrefd_const_iterator it = beginSubRefd(); it != endSubRefd(); ++it)
        fprintf(stderr, "  subref %u\n", *it);
    for(idrefd_const_iterator it = beginCreated(); it != endCreated(); ++it)
        fprintf(stderr, "  created %u\n", *it);
    for(idrefd_const_iterator it = beginDestroyed(); it != endDestroyed(); ++it)
        fprintf(stderr, "  destroyed %u\n", *it);
}

OSG_END_NAMESPACE
