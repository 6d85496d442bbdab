/// A GLSL program: vertex, fragment and geometry source texts, compiled and
/// linked once per window, with its uniform parameters.
///
/// The program is a window GL object (GLId). The first activation in a
/// window compiles and links it and sends every uniform; a change of a
/// program text (or cgFrontEnd) recompiles at the next activation, and a
/// change marked with ParametersFieldMask (or the program parameters)
/// re-sends all uniforms at the next activation. A uniform set with
/// setUniformParameter reaches GL only that way. Compile and link errors
/// are reported through the log with the driver's info log; a program that
/// fails has the name 0, and its activation does nothing.
///
/// Parameters whose names start with "OSG" (and are longer than three
/// characters) are not sent from their values but computed at activation:
/// OSGWorldMatrix, OSGInvWorldMatrix, OSGTransInvWorldMatrix,
/// OSGCameraOrientation, OSGCameraPosition, OSGNearFar, OSGViewMatrix,
/// OSGInvViewMatrix, OSGStereoLeftEye, OSGClusterId, OSGActiveLightsMask,
/// OSGActiveLightsCount, OSGLight0Active ... OSGLight7Active. The world
/// matrices and the light entries follow every drawn object (update()).
#ifndef _OSGSHLCHUNK_H_
#define _OSGSHLCHUNK_H_

#include <OpenSG/OSGSHLChunkBase.h>
#include <OpenSG/OSGGL.h>

#include <map>
#include <string>
#include <utility>
#include <vector>

#ifndef OSG_APIENTRY
#define OSG_APIENTRY APIENTRY
#endif

OSG_BEGIN_NAMESPACE

class Window;

class SHLChunk : public SHLChunkBase
{
  private:
    typedef SHLChunkBase Inherited;

  public:
    typedef GLint(OSG_APIENTRY *GetUniformLocationFunc)(GLuint program, const char *name);

    typedef void (*parametercbfp)(GetUniformLocationFunc getUniformLocation,
                                  DrawActionBase *action, GLuint program);
    typedef void (*osgparametercbfp)(const ShaderParameterPtr &parameter,
                                     DrawActionBase *action, GLuint program);
    typedef void (*programcbfp)(GLuint program);

    virtual const StateChunkClass *getClass(void) const;
    static const StateChunkClass *getStaticClass(void) { return &_class; }
    static UInt32 getStaticClassId(void) { return _class.getId(); }

    /// Sends the per-object OSG uniforms; relies on the program being bound.
    virtual void update(DrawActionBase *action);
    virtual void activate(DrawActionBase *action, UInt32 index = 0);
    virtual void changeFrom(DrawActionBase *action, StateChunk *old, UInt32 index = 0);
    virtual void deactivate(DrawActionBase *action, UInt32 index = 0);

    virtual Real32 switchCost(StateChunk *chunk);

    virtual bool operator<(const StateChunk &other) const;
    /// Another SHLChunk with the same vertex and fragment texts and the same
    /// number of parameters.
    virtual bool operator==(const StateChunk &other) const;
    virtual bool operator!=(const StateChunk &other) const;

    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

    // --- program parameters (glProgramParameteriEXT); no edit opened -------------

    void addProgramParameter(GLenum name, UInt32 value);
    void subProgramParameter(GLenum name);
    void setProgramParameter(GLenum name, UInt32 value);
    UInt32 getProgramParameter(GLenum name);
    std::vector<std::pair<GLenum, UInt32> > getProgramParameters(void);
    void clearProgramParameters(void);

    // --- callbacks -----------------------------------------------------------------------

    /// Adds an Int32 uniform name whose value fp computes at activation.
    void addParameterCallback(const char *name, parametercbfp fp);
    void addParameterCallback(const char *name, osgparametercbfp fp);

    /// Called at every activation and update of every SHLChunk.
    static void setParameterCallback(parametercbfp fp);
    static parametercbfp getParameterCallback(void);

    /// Called after a program was linked, and before one is deleted.
    static void setCreateProgramCallback(programcbfp fp);
    static programcbfp getCreateProgramCallback(void);
    static void setDeleteProgramCallback(programcbfp fp);
    static programcbfp getDeleteProgramCallback(void);

    /// The value of OSGClusterId (-1 by default).
    static void setClusterId(Int32 id);

    // --- registered GL functions (Window::getFunction ids) -----------------------------

    static UInt32 getFuncUniform1i(void);
    static UInt32 getFuncUniform1iv(void);
    static UInt32 getFuncUniform2iv(void);
    static UInt32 getFuncUniform3iv(void);
    static UInt32 getFuncUniform4iv(void);
    static UInt32 getFuncUniform1f(void);
    static UInt32 getFuncUniform1fv(void);
    static UInt32 getFuncUniform2fv(void);
    static UInt32 getFuncUniform3fv(void);
    static UInt32 getFuncUniform4fv(void);
    static UInt32 getFuncUniformMatrix4fv(void);
    static UInt32 getFuncGetUniformiv(void);
    static UInt32 getFuncGetUniformfv(void);
    static UInt32 getFuncUseProgram(void);
    static UInt32 getFuncGetUniformLocation(void);

  protected:
    SHLChunk(void);
    SHLChunk(const SHLChunk &source);
    virtual ~SHLChunk(void);

    /// Registers the GL object (not for the start-up prototype).
    void onCreate(const SHLChunk *source = NULL);
    /// Drops the parameters and destroys the GL object.
    virtual void onDestroy(void);

    /// The GL-object callback: compile/link, refresh, destroy.
    void handleGL(Window *win, UInt32 idstatus);
    /// The destroy and finaldestroy part of handleGL; needs no chunk.
    static void destroyGL(Window *win, UInt32 idstatus);

    void updateProgram(Window *win);
    void updateParameterLocations(Window *win, const MFShaderParameterPtr &parameters);
    /// Sends the user uniforms (changed ones unless force); binds the program
    /// for that and afterwards binds what was bound before, unless
    /// keepProgramActive.
    void updateParameters(Window *win, const MFShaderParameterPtr &parameters,
                          bool useProgram = true, bool force = false,
                          bool keepProgramActive = false);
    void updateProgramParameters(Window *win);

    /// Rebuilds the list of computed uniforms when forced, after the
    /// parameters were cleared, or when their number changed.
    void checkOSGParameters(bool force = false);
    /// Sends the computed uniforms; with update only the per-object ones.
    void updateOSGParameters(DrawActionBase *action, GLuint program, bool update = false);

  private:
    friend class FieldContainer;
    friend class SHLChunkBase;

    static void initMethod(void);

    struct OSGParameter
    {
        ShaderParameterPtr parameter;
        osgparametercbfp   osgfp;
        parametercbfp      fp;
        bool               perObject; ///< also sent by update (user callbacks too)
    };

    bool ignoreGL(void) const;
    void registerGL(void);
    GLuint getProgram(Window *win);
    static bool hasGLSL(Window *win);
    static bool hasGeometryShaders(Window *win);

    std::vector<OSGParameter>               _osgParameters;
    UInt32                                  _oldParameterSize;
    std::map<std::string, parametercbfp>    _userParameterCallbacks;
    std::map<std::string, osgparametercbfp> _userOSGParameterCallbacks;

    /// "SHL", 1 slot.
    static StateChunkClass _class;

    static parametercbfp _userParameterCallback;
    static programcbfp   _createProgramCallback;
    static programcbfp   _deleteProgramCallback;

    void operator=(const SHLChunk &source);
};

typedef SHLChunk *SHLChunkP;

OSG_END_NAMESPACE

#endif
