/// A table of statistics elements, one slot per descriptor id.
#ifndef _OSGSTATCOLLECTOR_H_
#define _OSGSTATCOLLECTOR_H_

#include <OpenSG/OSGStatElem.h>
#include <OpenSG/OSGStatElemTypes.h>

#include <vector>

OSG_BEGIN_NAMESPACE

class StatCollector
{
  public:
    /// A plain object: the caller deletes it.
    static StatCollector *create(void);

    StatCollector(void);
    /// Copies the elements.
    StatCollector(const StatCollector &source);
    StatCollector &operator=(const StatCollector &source);
    virtual ~StatCollector(void);

    UInt32 getNumOfElems(void) const { return UInt32(_elemVec.size()); }
    bool   isValidID(Int32 id) const { return id >= 0 && id < Int32(_elemVec.size()); }

    /// Grows the table to the number of descriptors.
    void refitElemNum(void);
    /// Deletes every element.
    void clearElems(void);
    /// Resets every existing element.
    void reset(void);

    /// The element of the descriptor id; with create, it is made on first
    /// use, otherwise NULL when it does not exist.
    StatElem *getElem(Int32 id, bool create = true);
    StatElem *getElem(StatElemDescBase &desc, bool create = true)
    {
        return getElem(desc.getID(), create);
    }
    template <class T>
    T *getElem(StatElemDesc<T> &desc, bool create = true)
    {
        return static_cast<T *>(getElem(desc.getID(), create));
    }

    /// "name=value|..." for every existing element.
    void putToString(std::string &outVal) const;

    /// Adds the other collector's elements to these (creating missing ones).
    StatCollector &operator+=(const StatCollector &other);

  private:
    std::vector<StatElem *> _elemVec;
};

OSG_END_NAMESPACE

#endif
