#ifndef _OSGPERMUTATIONSHLCHUNK_H_
#define _OSGPERMUTATIONSHLCHUNK_H_

#include <OpenSG/OSGPermutationSHLChunkBase.h>
#include <OpenSG/OSGShaderParameterAccess.h>

#include <map>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

OSG_BEGIN_NAMESPACE

/// A shader chunk that stands where an SHLChunk would stand but never runs
/// programs of its own: its vertex, fragment and geometry programs are
/// templates, compiled once per render state into plain SHLChunks (the
/// permutations), one of which it activates in its place.
///
/// At every activation it writes the render state as a block of "#define "
/// lines, one per line:
///
///     OSG_LIGHT_0_ACTIVE ... OSG_LIGHT_7_ACTIVE   0 or 1, one per GL light
///     OSG_ACTIVE_LIGHTS_COUNT                     how many of the eight are on
///     OSG_ACTIVE_LIGHTS_MASK                      the render action's light mask
///     OSG_STEREO_LEFT_EYE                         -1 mono, 1 left eye, 0 right eye
///     OSG_FOG                                     0 off, 1 GL_LINEAR, 2 GL_EXP, 3 GL_EXP2
///
/// followed by one "#define NAME VALUE" per permutation parameter (bool as
/// 0 or 1, int in decimal, string as it stands). These parameters are not
/// separated by line breaks: a string value that ends in a newline keeps
/// the next define on a line of its own. The whole text is the key of the
/// permutation cache; a new key creates an SHLChunk whose programs are
/// prefix + newline + key + newline + template (empty templates stay
/// empty). Put "#version" lines into the prefixes.
///
/// Uniforms set on this chunk (setUniformParameter, then an edit of
/// ParametersFieldMask) are copied to whichever permutation becomes active.
/// A change of a program, a prefix or cgFrontEnd throws every permutation
/// away; a change of a permutation parameter's value just leads to another
/// cache entry. Each cache holds at most 128 entries before it is emptied
/// at once.
class PermutationSHLChunk : public PermutationSHLChunkBase
{
  private:
    typedef PermutationSHLChunkBase Inherited;

  public:
    /// Edits of the program texts or prefixes drop the compiled permutations; edited
    /// parameters reach every permutation at its next activation.
    virtual void changed(BitVector whichField, UInt32 origin);
    /// Logs "Dump <class> NI": the fields are not listed.
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

    // --- state chunk ------------------------------------------------------------

    /// Nothing: the permutation's per-object uniforms are not updated.
    virtual void update(DrawActionBase *action);
    /// Finds or makes the permutation of the current state and activates
    /// it (always with index 0).
    virtual void activate(DrawActionBase *action, UInt32 index = 0);
    /// Deactivates old (which must be a PermutationSHLChunk) and activates
    /// this one; with any other old chunk only a warning.
    virtual void changeFrom(DrawActionBase *action, StateChunk *old, UInt32 index = 0);
    /// Deactivates the permutation that activate chose.
    virtual void deactivate(DrawActionBase *action, UInt32 index = 0);

    /// The isTransparent field.
    virtual bool isTransparent(void) const;
    /// 0: switching is not weighed.
    virtual Real32 switchCost(StateChunk *chunk);

    /// By identity (address).
    /// @{
    virtual bool operator<(const StateChunk &other) const;
    virtual bool operator==(const StateChunk &other) const;
    virtual bool operator!=(const StateChunk &other) const;
    /// @}

    // --- permutation parameters --------------------------------------------------
    // Name-based access to permutationParameters. set adds a string
    // parameter for an unknown name. None of them edits the chunk.

    /// String parameters of permutationParameters; set adds one for an
    /// unknown name, get and sub are false for one.
    /// @{
    bool setPermutationParameter(const char *name, const std::string &value);
    bool getPermutationParameter(const char *name, std::string &value);
    bool subPermutationParameter(const char *name);
    /// @}
    /// Drops every permutation parameter.
    void clearPermutationParameters(void);

    // --- the permutations ------------------------------------------------------------

    /// Destroys every cached permutation.
    void clearPermutationCache(void);
    /// The permutation made for key, NullFC if there is none.
    SHLChunkPtr findPermutation(const std::string &key);
    /// Makes and caches the permutation for key.
    SHLChunkPtr createPermutation(const std::string &key);

    /// Writes the block of state defines for the action's current state.
    void appendOSGPermutationParameters(std::stringstream &out, DrawActionBase *action);
    /// Writes the defines of the permutation parameters.
    void appendPermutationParameters(std::stringstream &out);

    /// Copies this chunk's uniforms to the active permutation.
    void updateParameters(void);

  protected:
    PermutationSHLChunk(void);
    /// A copy starts with empty caches.
    PermutationSHLChunk(const PermutationSHLChunk &source);
    virtual ~PermutationSHLChunk(void);

    /// Makes the access object; a copy takes references of its own to the
    /// source's permutation parameters.
    void onCreate(const PermutationSHLChunk *source = NULL);
    /// Drops the permutation parameters. The cached permutations stay.
    virtual void onDestroy(void);

  private:
    friend class FieldContainer;
    friend class PermutationSHLChunkBase;

    typedef std::map<std::string, SHLChunkPtr>         PermutationCache;
    typedef std::vector<std::pair<UInt32, std::string> > OSGParameterCache;

    static void initMethod(void);

    void appendOSGPermutationParameters(std::string &out, DrawActionBase *action);
    void appendPermutationParameters(std::string &out);

    ShaderParameterAccess *_permutationParameterAccess;
    PermutationCache       _permutationCache;
    SHLChunkPtr            _activePermutation;
    bool                   _parametersChanged;
    OSGParameterCache      _osgParameterCache;
    std::string            _key; ///< the key of the last activation

    void operator=(const PermutationSHLChunk &source);
};

typedef PermutationSHLChunk *PermutationSHLChunkP;

OSG_END_NAMESPACE

#endif
