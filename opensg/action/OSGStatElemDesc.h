/// Descriptors of statistics elements: static objects that name a kind of
/// statistic and give it an id, the index in a collector's element table.
#ifndef _OSGSTATELEMDESC_H_
#define _OSGSTATELEMDESC_H_

#include <OpenSG/OSGBaseTypes.h>

#include <string>
#include <vector>

OSG_BEGIN_NAMESPACE

class StatElem;

class StatElemDescBase
{
  public:
    /// Number of descriptors registered so far.
    static Int32 getNumOfDescs(void);
    static bool isValidID(Int32 descId);
    static StatElemDescBase *getDesc(Int32 descId);
    static StatElemDescBase *findDescByName(const Char8 *name);
    /// Writes every descriptor to the log.
    static void printAll(void);

    Int32 getID(void) const { return _id; }
    const std::string &getName(void) const { return _name; }
    const std::string &getDescription(void) const { return _description; }

    /// A new element of the descriptor's element type, bound to it.
    virtual StatElem *createElem(void) = 0;

    virtual ~StatElemDescBase(void);

  protected:
    /// Registers the descriptor; a name that is taken already gives a fatal
    /// log line and the id -1.
    StatElemDescBase(const Char8 *name, const Char8 *description);

  private:
    static std::vector<StatElemDescBase *> &descs(void);

    Int32       _id;
    std::string _name;
    std::string _description;

    StatElemDescBase(const StatElemDescBase &);
    void operator=(const StatElemDescBase &);
};

template <class T>
class StatElemDesc : public StatElemDescBase
{
  public:
    typedef T StatElemType;

    StatElemDesc(const Char8 *name, const Char8 *description)
        : StatElemDescBase(name, description) {}

    virtual StatElem *createElem(void) { return new T(this); }
};

OSG_END_NAMESPACE

#endif
