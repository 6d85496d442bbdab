/// State chunks: the pieces of OpenGL state that a State switches on and off,
/// and the classes that reserve slots for them.
///
/// A StateChunkClass classifies chunk types and reserves a run of slots in
/// every State. The class id is the index of the class's first slot, so ids
/// are not consecutive integers: a class with id 4 and 16 slots is followed by
/// a class with id 20. The classes register themselves during static
/// initialisation of the library, in the order the library's objects are
/// linked (alphabetical by source file: Blend, Color, Depth, Light, Material,
/// Polygon, SHL, Texture). Code must use getClassId()/getStaticClassId() and
/// never a number.
#ifndef _OSGSTATECHUNK_H_
#define _OSGSTATECHUNK_H_

#include <OpenSG/OSGStateChunkBase.h>

#include <string>
#include <vector>

OSG_BEGIN_NAMESPACE

class DrawActionBase;

class StateChunkClass
{
  public:
    typedef std::vector<std::string>::const_iterator iterator;

    /// Appends numslots entries (name, numslots); the id is the first one.
    StateChunkClass(const Char8 *name, UInt32 numslots = 1);

    UInt32 getId(void) const;
    const Char8 *getName(void) const;
    Int32 getNumSlots(void) const;

    /// The name stored at entry index, "<Unknown StatChunkClass!>" beyond.
    static const Char8 *getName(UInt32 index);
    /// The slot count of the class owning entry index, -1 beyond.
    static Int32 getNumSlots(UInt32 index);
    static UInt32 getUsedSlots(void);

    /// One name per slot.
    static iterator begin(void);
    static iterator end(void);

  protected:
    /// Exchanges the positions of two classes of equal slot count (or two
    /// neighbouring classes), rewriting their entries.
    void swap(StateChunkClass &other);

  private:
    UInt32 _classId;

    static std::vector<std::string> &classNames(void);
    static std::vector<UInt32> &numSlots(void);
};

class StateChunk : public StateChunkBase
{
  private:
    typedef StateChunkBase Inherited;

  public:
    // --- the chunk's own virtuals, in OpenSG's slot order -----------------

    /// The chunk's class; NULL for the abstract chunk types, whose objects
    /// must never be put into a State.
    virtual const StateChunkClass *getClass(void) const;

    /// Called by the render action before each drawn object on the chunk in
    /// the SHL slot, so that shaders see per-object values.
    virtual void update(DrawActionBase *action);

    /// index is the slot within the chunk's class (texture unit, light
    /// number); single-slot chunks ignore it.
    virtual void activate(DrawActionBase *action, UInt32 index = 0);
    /// Switches from old (a chunk of the same class) to this one; the
    /// default deactivates old and activates this.
    virtual void changeFrom(DrawActionBase *action, StateChunk *old, UInt32 index = 0);
    virtual void deactivate(DrawActionBase *action, UInt32 index = 0);

    virtual bool isTransparent(void) const;
    virtual Real32 switchCost(StateChunk *chunk);

    virtual bool operator<(const StateChunk &other) const;
    virtual bool operator==(const StateChunk &other) const;
    virtual bool operator!=(const StateChunk &other) const;

    /// getClass()->getId(); 0xFFFFFFFF for a type without a class.
    UInt32 getClassId(void) const;

    /// Hidden by every concrete chunk with its own class; none here.
    static const StateChunkClass *getStaticClass(void) { return NULL; }
    static UInt32 getStaticClassId(void) { return 0xFFFFFFFF; }

    /// Ends every chunk's changed chain; does nothing.
    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

  protected:
    StateChunk(void);
    StateChunk(const StateChunk &source);
    virtual ~StateChunk(void);

  private:
    friend class FieldContainer;
    friend class StateChunkBase;

    static void initMethod(void);

    void operator=(const StateChunk &source);
};

typedef StateChunk *StateChunkP;

OSG_END_NAMESPACE

#endif
