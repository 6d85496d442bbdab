#include <OpenSG/OSGStateChunk.h>
#include <OpenSG/OSGBaseFunctions.h>
#include <OpenSG/OSGTextureChunk.h>

#include <algorithm>
#include <iterator>

OSG_BEGIN_NAMESPACE

// --- StateChunkClass ---------------------------------------------------------

namespace
{

struct StandardClass
{
    const Char8 *name;
    UInt32       slots;
};

// The host core's chunk classes hold these places whatever the order in
// which their static objects are constructed (a link order, which moves
// whenever the libraries gain a source). A state activates its chunks in
// class order, so this order is also what a chunk sees of the others at
// its activation: textures come before anything that transforms them, and
// fog, lights and material are set before a shader chunk that reads them.
const StandardClass StandardClasses[] = {
    {"Texture", osgMaxTexImages},
    {"TexGen", osgMaxTexCoords},
    {"TextureTransform", osgMaxTexCoords},
    {"Transform", 1},
    {"TwoSidedLighting", 1},
    {"Fog", 1},
    {"Light", 8},
    {"Material", 1},
    {"Polygon", 1},
    {"Depth", 1},
    {"Color", 1},
    {"Blend", 1},
    {"SHL", 1}};

// whether the standard class that starts at an entry has been constructed
std::vector<bool> &claimed(void)
{
    static std::vector<bool> *entries = new std::vector<bool>;
    return *entries;
}

void appendClass(std::vector<std::string> &names, std::vector<UInt32> &slots,
                 const Char8 *name, UInt32 numslots)
{
    for(UInt32 i = 0; i < numslots; ++i)
    {
        names.push_back(name != NULL ? name : "");
        slots.push_back(numslots);
        claimed().push_back(false);
    }
}

// made on first use, with the standard classes in their places
void reserveStandardClasses(std::vector<std::string> &names, std::vector<UInt32> &slots)
{
    for(const StandardClass &c : StandardClasses)
        appendClass(names, slots, c.name, c.slots);
}

} // namespace

std::vector<std::string> &StateChunkClass::classNames(void)
{
    static std::vector<std::string> *names = NULL;
    if(names == NULL)
    {
        names = new std::vector<std::string>;
        reserveStandardClasses(*names, numSlots());
    }
    return *names;
}

std::vector<UInt32> &StateChunkClass::numSlots(void)
{
    static std::vector<UInt32> *slots = new std::vector<UInt32>;
    return *slots;
}

StateChunkClass::StateChunkClass(const Char8 *name, UInt32 numslots)
    : _classId(static_cast<UInt32>(classNames().size()))
{
    // a standard class takes its reserved place once; any other class,
    // and a second class of a standard name, comes after all of them
    const std::string wanted = name != NULL ? name : "";
    for(UInt32 i = 0; i < classNames().size(); i += std::max<UInt32>(numSlots()[i], 1))
    {
        if(!claimed()[i] && classNames()[i] == wanted && numSlots()[i] == numslots &&
           std::any_of(std::begin(StandardClasses), std::end(StandardClasses),
                       [&](const StandardClass &c) { return wanted == c.name; }))
        {
            claimed()[i] = true;
            _classId     = i;
            return;
        }
    }
    appendClass(classNames(), numSlots(), name, numslots);
    claimed()[_classId] = true;
}

UInt32 StateChunkClass::getId(void) const
{
    return _classId;
}

const Char8 *StateChunkClass::getName(void) const
{
    return getName(_classId);
}

Int32 StateChunkClass::getNumSlots(void) const
{
    return getNumSlots(_classId);
}

const Char8 *StateChunkClass::getName(UInt32 index)
{
    if(index >= classNames().size())
        return "<Unknown StatChunkClass!>";
    return classNames()[index].c_str();
}

Int32 StateChunkClass::getNumSlots(UInt32 index)
{
    if(index >= numSlots().size())
        return -1;
    return static_cast<Int32>(numSlots()[index]);
}

UInt32 StateChunkClass::getUsedSlots(void)
{
    return static_cast<UInt32>(classNames().size());
}

StateChunkClass::iterator StateChunkClass::begin(void)
{
    return classNames().begin();
}

StateChunkClass::iterator StateChunkClass::end(void)
{
    return classNames().end();
}

void StateChunkClass::swap(StateChunkClass &other)
{
    if(&other == this)
        return;

    std::vector<std::string> &names = classNames();
    std::vector<UInt32>      &slots = numSlots();

    UInt32 lo = osgMin(_classId, other._classId);
    UInt32 hi = osgMax(_classId, other._classId);
    UInt32 nlo = slots[lo];
    UInt32 nhi = slots[hi];

    if(nlo != nhi && lo + nlo != hi)
    {
        SWARNING << "StateChunkClass::swap: classes " << names[lo] << " and " << names[hi]
                 << " are neither neighbours nor of equal size, ignored!" << std::endl;
        return;
    }

    UInt32 &idLo = (_classId == lo) ? _classId : other._classId;
    UInt32 &idHi = (_classId == lo) ? other._classId : _classId;

    if(lo + nlo == hi)
    {
        // neighbours: the higher class moves in front of the lower one
        std::rotate(names.begin() + lo, names.begin() + hi, names.begin() + hi + nhi);
        std::rotate(slots.begin() + lo, slots.begin() + hi, slots.begin() + hi + nhi);
        std::rotate(claimed().begin() + lo, claimed().begin() + hi, claimed().begin() + hi + nhi);
        idHi = lo;
        idLo = lo + nhi;
    }
    else
    {
        // equal sizes: the two runs trade places, the classes between stay
        std::swap_ranges(names.begin() + lo, names.begin() + lo + nlo, names.begin() + hi);
        std::swap_ranges(slots.begin() + lo, slots.begin() + lo + nlo, slots.begin() + hi);
        for(UInt32 i = 0; i < nlo; ++i)
        {
            const bool a = claimed()[lo + i];
            claimed()[lo + i] = claimed()[hi + i];
            claimed()[hi + i] = a;
        }
        idHi = lo;
        idLo = hi;
    }
}

// --- StateChunk --------------------------------------------------------------

StateChunk::StateChunk(void) : Inherited()
{
}

StateChunk::StateChunk(const StateChunk &source) : Inherited(source)
{
}

StateChunk::~StateChunk(void)
{
}

void StateChunk::initMethod(void)
{
}

const StateChunkClass *StateChunk::getClass(void) const
{
    return NULL;
}

UInt32 StateChunk::getClassId(void) const
{
    const StateChunkClass *cls = getClass();
    return cls != NULL ? cls->getId() : 0xFFFFFFFF;
}

void StateChunk::update(DrawActionBase *)
{
}

void StateChunk::activate(DrawActionBase *, UInt32)
{
    FWARNING(("StateChunk::activate called!\n"));
}

void StateChunk::changeFrom(DrawActionBase *action, StateChunk *old, UInt32 index)
{
    old->deactivate(action, index);
    activate(action, index);
}

void StateChunk::deactivate(DrawActionBase *, UInt32)
{
    FWARNING(("StateChunk::deactivate called!\n"));
}

bool StateChunk::isTransparent(void) const
{
    return false;
}

Real32 StateChunk::switchCost(StateChunk *)
{
    return 0;
}

bool StateChunk::operator<(const StateChunk &other) const
{
    return this < &other;
}

bool StateChunk::operator==(const StateChunk &) const
{
    return false;
}

bool StateChunk::operator!=(const StateChunk &other) const
{
    return !(*this == other);
}

void StateChunk::changed(BitVector, UInt32)
{
}

void StateChunk::dump(UInt32, const BitVector) const
{
    SLOG << "Dump StateChunk NI" << std::endl;
}

OSG_END_NAMESPACE
