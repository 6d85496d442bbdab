/// RefPtr: a container pointer that holds a counted reference for as long
/// as it points at the container.
#ifndef _OSGREFPTR_H_
#define _OSGREFPTR_H_

#include <OpenSG/OSGFieldContainerPtr.h>

OSG_BEGIN_NAMESPACE

template <class Ref>
class RefPtr
{
  public:
    typedef Ref                            FCPtrType;
    typedef typename Ref::StoredObjectType StoredObjectType;

    RefPtr(void) : _ref() {}
    RefPtr(const Ref &ref) : _ref(ref) { addRefCP(_ref); }
    RefPtr(const RefPtr &other) : _ref(other._ref) { addRefCP(_ref); }
    ~RefPtr(void) { subRefCP(_ref); }

    RefPtr &operator=(const Ref &ref)
    {
        setRefdCP(_ref, ref);
        return *this;
    }
    RefPtr &operator=(const RefPtr &other)
    {
        setRefdCP(_ref, other._ref);
        return *this;
    }
    RefPtr &operator=(const NullFieldContainerPtr &)
    {
        clearRefCP(_ref);
        return *this;
    }

    operator Ref(void) const { return _ref; }
    Ref get(void) const { return _ref; }

    StoredObjectType *operator->(void) const { return _ref.operator->(); }
    StoredObjectType &operator*(void) const { return *_ref; }

    bool operator==(const RefPtr &other) const { return _ref == other._ref; }
    bool operator!=(const RefPtr &other) const { return _ref != other._ref; }
    bool operator<(const RefPtr &other) const { return _ref < other._ref; }
    bool operator==(const Ref &other) const { return _ref == other; }
    bool operator!=(const Ref &other) const { return _ref != other; }
    bool operator==(const NullFieldContainerPtr &) const { return _ref == NullFC; }
    bool operator!=(const NullFieldContainerPtr &) const { return _ref != NullFC; }
    bool operator!(void) const { return _ref == NullFC; }
    explicit operator bool(void) const { return _ref != NullFC; }

  private:
    Ref _ref;
};

OSG_END_NAMESPACE

#endif
