/// Per-thread record of created, changed, referenced and destroyed containers.
#ifndef _OSGCHANGELIST_H_
#define _OSGCHANGELIST_H_

#include <OpenSG/OSGBaseTypes.h>

#include <utility>
#include <vector>

OSG_BEGIN_NAMESPACE

class FieldContainerPtr;

class ChangeList
{
  public:
    typedef std::pair<UInt32, BitVector> ChangeEntry;
    typedef std::vector<ChangeEntry>     ChangedList;
    typedef std::vector<UInt32>          IdList;

    typedef ChangedList::const_iterator changed_const_iterator;
    typedef IdList::const_iterator      idrefd_const_iterator;

    enum Mode
    {
        Private = 0x0001,
        Public  = 0x0002
    };

    ChangeList(void);
    ~ChangeList(void);

    void addChanged(const FieldContainerPtr &ptr, BitVector whichField);
    void addAddRefd(const FieldContainerPtr &ptr);
    void addSubRefd(const FieldContainerPtr &ptr);
    void addCreated(UInt32 uiContainerId);
    void addDestroyed(UInt32 uiContainerId);

    UInt32 sizeChanged(void) const { return UInt32(_changedFieldContainers.size()); }
    UInt32 sizeAddRefd(void) const { return UInt32(_addRefdFieldContainers.size()); }
    UInt32 sizeSubRefd(void) const { return UInt32(_subRefdFieldContainers.size()); }
    UInt32 sizeCreated(void) const { return UInt32(_createdFieldContainers.size()); }
    UInt32 sizeDestroyed(void) const { return UInt32(_destroyedFieldContainers.size()); }

    changed_const_iterator beginChanged(void) const { return _changedFieldContainers.begin(); }
    changed_const_iterator endChanged(void) const { return _changedFieldContainers.end(); }
    idrefd_const_iterator beginAddRefd(void) const { return _addRefdFieldContainers.begin(); }
    idrefd_const_iterator endAddRefd(void) const { return _addRefdFieldContainers.end(); }
    idrefd_const_iterator beginSubRefd(void) const { return _subRefdFieldContainers.begin(); }
    idrefd_const_iterator endSubRefd(void) const { return _subRefdFieldContainers.end(); }
    idrefd_const_iterator beginCreated(void) const { return _createdFieldContainers.begin(); }
    idrefd_const_iterator endCreated(void) const { return _createdFieldContainers.end(); }
    idrefd_const_iterator beginDestroyed(void) const { return _destroyedFieldContainers.begin(); }
    idrefd_const_iterator endDestroyed(void) const { return _destroyedFieldContainers.end(); }

    void clearAll(void);
    void swap(ChangeList &other);
    bool merge(const ChangeList &other);
    bool empty(void) const;

    void setAspect(UInt32 uiAspectId);
    UInt32 getAspect(void) const { return _uiAspectId; }
    void setReadOnly(bool bReadOnly) { _bReadOnly = bReadOnly; }

    /// OpenSG's switch that makes new lists record. Lists here record from
    /// the start, so it changes nothing; programs that call it before
    /// osgInit work unchanged.
    static void setReadWriteDefault(bool bReadWrite = true) {}
    bool isReadOnly(void) const { return _bReadOnly; }
    void setMode(Mode mode) { _mode = mode; }

    /// Brings the copies of aspect toAspect up to date with this list's
    /// aspect, then clears the list.
    void applyTo(UInt32 uiAspectId);
    void applyToCurrent(void);
    void apply(void);
    void applyAndClear(void);

    void dump(void) const;

  private:
    void doApply(UInt32 fromAspect, UInt32 toAspect);

    ChangedList _changedFieldContainers;
    IdList      _addRefdFieldContainers;
    IdList      _subRefdFieldContainers;
    IdList      _createdFieldContainers;
    IdList      _destroyedFieldContainers;
    UInt32      _uiAspectId;
    Mode        _mode;
    bool        _bReadOnly;

    ChangeList(const ChangeList &);
    void operator=(const ChangeList &);
};

OSG_END_NAMESPACE

#endif
