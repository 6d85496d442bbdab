#include <OpenSG/OSGSHLChunk.h>
#include <OpenSG/OSGWindow.h>
#include <OpenSG/OSGDrawActionBase.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGCamera.h>
#include <OpenSG/OSGCameraDecorator.h>
#include <OpenSG/OSGStereoCameraDecorator.h>
#include <OpenSG/OSGViewport.h>

#include <cstring>

#ifndef GL_CG_VERTEX_SHADER_EXT
#define GL_CG_VERTEX_SHADER_EXT 0x890E
#endif
#ifndef GL_CG_FRAGMENT_SHADER_EXT
#define GL_CG_FRAGMENT_SHADER_EXT 0x890F
#endif

OSG_BEGIN_NAMESPACE

StateChunkClass SHLChunk::_class("SHL", 1);

SHLChunk::parametercbfp SHLChunk::_userParameterCallback = NULL;
SHLChunk::programcbfp   SHLChunk::_createProgramCallback = NULL;
SHLChunk::programcbfp   SHLChunk::_deleteProgramCallback = NULL;

namespace
{
UInt32 extGLSL     = Window::invalidExtensionID;
UInt32 extCg       = Window::invalidExtensionID;
UInt32 extGeometry = Window::invalidExtensionID;

UInt32 funcCreateProgram      = Window::invalidFunctionID;
UInt32 funcCreateShader       = Window::invalidFunctionID;
UInt32 funcDeleteProgram      = Window::invalidFunctionID;
UInt32 funcDeleteShader       = Window::invalidFunctionID;
UInt32 funcDetachShader       = Window::invalidFunctionID;
UInt32 funcAttachShader       = Window::invalidFunctionID;
UInt32 funcShaderSource       = Window::invalidFunctionID;
UInt32 funcCompileShader      = Window::invalidFunctionID;
UInt32 funcLinkProgram        = Window::invalidFunctionID;
UInt32 funcGetShaderInfoLog   = Window::invalidFunctionID;
UInt32 funcGetProgramInfoLog  = Window::invalidFunctionID;
UInt32 funcUseProgram         = Window::invalidFunctionID;
UInt32 funcGetShaderiv        = Window::invalidFunctionID;
UInt32 funcGetProgramiv       = Window::invalidFunctionID;
UInt32 funcGetUniformLocation = Window::invalidFunctionID;
UInt32 funcBindAttribLocation = Window::invalidFunctionID;
UInt32 funcGetAttribLocation  = Window::invalidFunctionID;
UInt32 funcUniform1i          = Window::invalidFunctionID;
UInt32 funcUniform1iv         = Window::invalidFunctionID;
UInt32 funcUniform2iv         = Window::invalidFunctionID;
UInt32 funcUniform3iv         = Window::invalidFunctionID;
UInt32 funcUniform4iv         = Window::invalidFunctionID;
UInt32 funcUniform1f          = Window::invalidFunctionID;
UInt32 funcUniform1fv         = Window::invalidFunctionID;
UInt32 funcUniform2fv         = Window::invalidFunctionID;
UInt32 funcUniform3fv         = Window::invalidFunctionID;
UInt32 funcUniform4fv         = Window::invalidFunctionID;
UInt32 funcUniformMatrix4fv   = Window::invalidFunctionID;
UInt32 funcGetUniformiv       = Window::invalidFunctionID;
UInt32 funcGetUniformfv       = Window::invalidFunctionID;
UInt32 funcProgramParameteri  = Window::invalidFunctionID;

Int32 clusterId = -1;

/// The GL entry points of one window, fetched for one piece of work.
struct GLSLFuncs
{
    explicit GLSLFuncs(Window *win)
        : createProgram(fetch<PFNGLCREATEPROGRAMPROC>(win, funcCreateProgram)),
          createShader(fetch<PFNGLCREATESHADERPROC>(win, funcCreateShader)),
          deleteProgram(fetch<PFNGLDELETEPROGRAMPROC>(win, funcDeleteProgram)),
          deleteShader(fetch<PFNGLDELETESHADERPROC>(win, funcDeleteShader)),
          attachShader(fetch<PFNGLATTACHSHADERPROC>(win, funcAttachShader)),
          shaderSource(fetch<PFNGLSHADERSOURCEPROC>(win, funcShaderSource)),
          compileShader(fetch<PFNGLCOMPILESHADERPROC>(win, funcCompileShader)),
          linkProgram(fetch<PFNGLLINKPROGRAMPROC>(win, funcLinkProgram)),
          getShaderInfoLog(fetch<PFNGLGETSHADERINFOLOGPROC>(win, funcGetShaderInfoLog)),
          getProgramInfoLog(fetch<PFNGLGETPROGRAMINFOLOGPROC>(win, funcGetProgramInfoLog)),
          useProgram(fetch<PFNGLUSEPROGRAMPROC>(win, funcUseProgram)),
          getShaderiv(fetch<PFNGLGETSHADERIVPROC>(win, funcGetShaderiv)),
          getProgramiv(fetch<PFNGLGETPROGRAMIVPROC>(win, funcGetProgramiv)),
          getUniformLocation(fetch<PFNGLGETUNIFORMLOCATIONPROC>(win, funcGetUniformLocation))
    {
    }

    template <class FuncT>
    static FuncT fetch(Window *win, UInt32 id)
    {
        return reinterpret_cast<FuncT>(win->getFunction(id));
    }

    bool valid(void) const
    {
        return createProgram && createShader && deleteProgram && deleteShader &&
               attachShader && shaderSource && compileShader && linkProgram &&
               getShaderInfoLog && getProgramInfoLog && useProgram && getShaderiv &&
               getProgramiv && getUniformLocation;
    }

    PFNGLCREATEPROGRAMPROC      createProgram;
    PFNGLCREATESHADERPROC       createShader;
    PFNGLDELETEPROGRAMPROC      deleteProgram;
    PFNGLDELETESHADERPROC       deleteShader;
    PFNGLATTACHSHADERPROC       attachShader;
    PFNGLSHADERSOURCEPROC       shaderSource;
    PFNGLCOMPILESHADERPROC      compileShader;
    PFNGLLINKPROGRAMPROC        linkProgram;
    PFNGLGETSHADERINFOLOGPROC   getShaderInfoLog;
    PFNGLGETPROGRAMINFOLOGPROC  getProgramInfoLog;
    PFNGLUSEPROGRAMPROC         useProgram;
    PFNGLGETSHADERIVPROC        getShaderiv;
    PFNGLGETPROGRAMIVPROC       getProgramiv;
    PFNGLGETUNIFORMLOCATIONPROC getUniformLocation;
};

template <class FuncT>
inline FuncT windowFunc(Window *win, UInt32 id)
{
    return reinterpret_cast<FuncT>(win->getFunction(id));
}

std::string shaderLog(const GLSLFuncs &gl, GLuint shader)
{
    GLint length = 0;
    gl.getShaderiv(shader, GL_INFO_LOG_LENGTH, &length);
    if(length <= 1)
        return std::string();
    std::string text(size_t(length), '\0');
    gl.getShaderInfoLog(shader, length, NULL, &text[0]);
    text.resize(std::strlen(text.c_str()));
    return text;
}

std::string programLog(const GLSLFuncs &gl, GLuint program)
{
    GLint length = 0;
    gl.getProgramiv(program, GL_INFO_LOG_LENGTH, &length);
    if(length <= 1)
        return std::string();
    std::string text(size_t(length), '\0');
    gl.getProgramInfoLog(program, length, NULL, &text[0]);
    text.resize(std::strlen(text.c_str()));
    return text;
}

/// Compiles one stage; 0 (after logging the compiler's output) on failure.
GLuint compileStage(const GLSLFuncs &gl, GLenum type, const std::string &source,
                    const char *stageName)
{
    GLuint      shader = gl.createShader(type);
    const char *text   = source.c_str();
    gl.shaderSource(shader, 1, &text, NULL);
    gl.compileShader(shader);

    GLint status = 0;
    gl.getShaderiv(shader, GL_COMPILE_STATUS, &status);
    if(status == 0)
    {
        std::string log = shaderLog(gl, shader);
        FFATAL(("Couldn't compile %s program!\n%s\n", stageName, log.c_str()));
        gl.deleteShader(shader);
        return 0;
    }
    return shader;
}

bool isOSGName(const std::string &name)
{
    return name.size() > 3 && name.compare(0, 3, "OSG") == 0;
}

// --- the computed (OSG...) uniforms ---------------------------------------------------

/// The parameter's location in program, looked up once after each link.
GLint locationOf(const ShaderParameterPtr &p, DrawActionBase *action, GLuint program)
{
    if(p->getLocation() == -2)
    {
        PFNGLGETUNIFORMLOCATIONPROC getLocation =
            windowFunc<PFNGLGETUNIFORMLOCATIONPROC>(action->getWindow(), funcGetUniformLocation);
        p->setLocation(getLocation != NULL ? getLocation(program, p->getName().c_str()) : -1);
    }
    return p->getLocation();
}

void sendMatrix(const ShaderParameterPtr &p, DrawActionBase *action, GLuint program,
                const Matrix &m)
{
    GLint loc = locationOf(p, action, program);
    if(loc < 0)
        return;
    PFNGLUNIFORMMATRIX4FVPROC f =
        windowFunc<PFNGLUNIFORMMATRIX4FVPROC>(action->getWindow(), funcUniformMatrix4fv);
    if(f != NULL)
        f(loc, 1, GL_FALSE, m.getValues());
}

void sendInt(const ShaderParameterPtr &p, DrawActionBase *action, GLuint program, Int32 v)
{
    GLint loc = locationOf(p, action, program);
    if(loc < 0)
        return;
    PFNGLUNIFORM1IPROC f = windowFunc<PFNGLUNIFORM1IPROC>(action->getWindow(), funcUniform1i);
    if(f != NULL)
        f(loc, v);
}

bool hasCamera(DrawActionBase *action, const char *name)
{
    if(action->getCamera() == NULL || action->getViewport() == NULL)
    {
        FWARNING(("SHLChunk::update%s : Can't update %sparameter, camera or viewport is "
                  "NULL!\n",
                  name, name));
        return false;
    }
    return true;
}

bool viewing(DrawActionBase *action, const char *name, Matrix &m)
{
    if(!hasCamera(action, name))
        return false;
    action->getCamera()->getViewing(m, action->getViewport()->getPixelWidth(),
                                    action->getViewport()->getPixelHeight());
    return true;
}

/// The object-to-world matrix of the drawn object: the render action's
/// accumulated matrix, identity for other actions.
Matrix worldMatrix(DrawActionBase *action)
{
    RenderAction *ra = dynamic_cast<RenderAction *>(action);
    return ra != NULL ? ra->top_matrix() : Matrix();
}

void updateWorldMatrix(const ShaderParameterPtr &p, DrawActionBase *action, GLuint program)
{
    if(!hasCamera(action, "WorldMatrix"))
        return;
    sendMatrix(p, action, program, worldMatrix(action));
}

void updateInvWorldMatrix(const ShaderParameterPtr &p, DrawActionBase *action, GLuint program)
{
    if(!hasCamera(action, "InvWorldMatrix"))
        return;
    Matrix m = worldMatrix(action);
    m.invert();
    sendMatrix(p, action, program, m);
}

void updateTransInvWorldMatrix(const ShaderParameterPtr &p, DrawActionBase *action,
                               GLuint program)
{
    if(!hasCamera(action, "TransInvWorldMatrix"))
        return;
    Matrix m = worldMatrix(action);
    m.invert();
    m.transpose();
    sendMatrix(p, action, program, m);
}

void updateCameraOrientation(const ShaderParameterPtr &p, DrawActionBase *action,
                             GLuint program)
{
    Matrix m;
    if(!viewing(action, "CameraOrientation", m))
        return;
    m.invert();
    m[3][0] = 0;
    m[3][1] = 0;
    m[3][2] = 0;
    m[3][3] = 1;
    sendMatrix(p, action, program, m);
}

void updateCameraPosition(const ShaderParameterPtr &p, DrawActionBase *action, GLuint program)
{
    Matrix m;
    if(!viewing(action, "CameraPosition", m))
        return;
    m.invert();
    GLint loc = locationOf(p, action, program);
    if(loc < 0)
        return;
    Vec3f pos(m[3][0], m[3][1], m[3][2]);
    PFNGLUNIFORM3FVPROC f = windowFunc<PFNGLUNIFORM3FVPROC>(action->getWindow(), funcUniform3fv);
    if(f != NULL)
        f(loc, 1, pos.getValues());
}

void updateNearFar(const ShaderParameterPtr &p, DrawActionBase *action, GLuint program)
{
    if(!hasCamera(action, "NearFar"))
        return;
    GLint loc = locationOf(p, action, program);
    if(loc < 0)
        return;
    Vec2f nearFar(action->getCamera()->getNear(), action->getCamera()->getFar());
    PFNGLUNIFORM2FVPROC f = windowFunc<PFNGLUNIFORM2FVPROC>(action->getWindow(), funcUniform2fv);
    if(f != NULL)
        f(loc, 1, nearFar.getValues());
}

void updateViewMatrix(const ShaderParameterPtr &p, DrawActionBase *action, GLuint program)
{
    Matrix m;
    if(!viewing(action, "ViewMatrix", m))
        return;
    sendMatrix(p, action, program, m);
}

void updateInvViewMatrix(const ShaderParameterPtr &p, DrawActionBase *action, GLuint program)
{
    Matrix m;
    if(!viewing(action, "InvViewMatrix", m))
        return;
    m.invert();
    sendMatrix(p, action, program, m);
}

void updateStereoLeftEye(const ShaderParameterPtr &p, DrawActionBase *action, GLuint program)
{
    // the first stereo decorator down the decoratee chain tells the eye
    Int32   eye = -1;
    Camera *cam = action->getCamera();
    while(cam != NULL)
    {
        StereoCameraDecorator *stereo = dynamic_cast<StereoCameraDecorator *>(cam);
        if(stereo != NULL)
        {
            eye = stereo->getLeftEye() ? 1 : 0;
            break;
        }
        CameraDecorator *decorator = dynamic_cast<CameraDecorator *>(cam);
        if(decorator == NULL)
            break;
        cam = decorator->getDecoratee().getCPtr();
    }
    sendInt(p, action, program, eye);
}

void updateClusterId(const ShaderParameterPtr &p, DrawActionBase *action, GLuint program)
{
    sendInt(p, action, program, clusterId);
}

UInt32 activeLightsMask(DrawActionBase *action)
{
    RenderAction *ra = dynamic_cast<RenderAction *>(action);
    return ra != NULL ? ra->getActiveLightsMask() : 0;
}

void updateActiveLightsMask(const ShaderParameterPtr &p, DrawActionBase *action, GLuint program)
{
    sendInt(p, action, program, Int32(activeLightsMask(action)));
}

void updateActiveLightsCount(const ShaderParameterPtr &p, DrawActionBase *action,
                             GLuint program)
{
    RenderAction *ra = dynamic_cast<RenderAction *>(action);
    sendInt(p, action, program, ra != NULL ? Int32(ra->getActiveLightsCount()) : 0);
}

template <UInt32 LightT>
void updateLightActive(const ShaderParameterPtr &p, DrawActionBase *action, GLuint program)
{
    sendInt(p, action, program, Int32(activeLightsMask(action) & (1u << LightT)));
}

struct BuiltIn
{
    const char               *name;
    SHLChunk::osgparametercbfp fp;
    bool                      perObject;
};

const BuiltIn builtIns[] = {
    {"OSGWorldMatrix", &updateWorldMatrix, true},
    {"OSGInvWorldMatrix", &updateInvWorldMatrix, true},
    {"OSGTransInvWorldMatrix", &updateTransInvWorldMatrix, true},
    {"OSGCameraOrientation", &updateCameraOrientation, false},
    {"OSGCameraPosition", &updateCameraPosition, false},
    {"OSGNearFar", &updateNearFar, false},
    {"OSGViewMatrix", &updateViewMatrix, false},
    {"OSGInvViewMatrix", &updateInvViewMatrix, false},
    {"OSGStereoLeftEye", &updateStereoLeftEye, false},
    {"OSGClusterId", &updateClusterId, false},
    {"OSGActiveLightsMask", &updateActiveLightsMask, true},
    {"OSGActiveLightsCount", &updateActiveLightsCount, true},
    {"OSGLight0Active", &updateLightActive<0>, true},
    {"OSGLight1Active", &updateLightActive<1>, true},
    {"OSGLight2Active", &updateLightActive<2>, true},
    {"OSGLight3Active", &updateLightActive<3>, true},
    {"OSGLight4Active", &updateLightActive<4>, true},
    {"OSGLight5Active", &updateLightActive<5>, true},
    {"OSGLight6Active", &updateLightActive<6>, true},
    {"OSGLight7Active", &updateLightActive<7>, true},
};
} // namespace

SHLChunk::SHLChunk(void) : Inherited(), _osgParameters(), _oldParameterSize(0)
{
}

SHLChunk::SHLChunk(const SHLChunk &source)
    : Inherited(source),
      _osgParameters(),
      _oldParameterSize(0),
      _userParameterCallbacks(source._userParameterCallbacks),
      _userOSGParameterCallbacks(source._userOSGParameterCallbacks)
{
}

SHLChunk::~SHLChunk(void)
{
}

void SHLChunk::initMethod(void)
{
    extGLSL     = Window::registerExtension("GL_ARB_shading_language_100");
    extCg       = Window::registerExtension("GL_EXT_Cg_shader");
    extGeometry = Window::registerExtension("GL_EXT_geometry_shader4");

    // the OpenGL 2.0 entry points: a window loads them with the extension
    // or from version 2.0 on, whatever its extension string says
    const Int32  ext = Int32(extGLSL);
    const UInt32 v20 = 0x0200;

    funcCreateProgram      = Window::registerFunction("glCreateProgram", ext, v20);
    funcCreateShader       = Window::registerFunction("glCreateShader", ext, v20);
    funcDeleteProgram      = Window::registerFunction("glDeleteProgram", ext, v20);
    funcDeleteShader       = Window::registerFunction("glDeleteShader", ext, v20);
    funcDetachShader       = Window::registerFunction("glDetachShader", ext, v20);
    funcAttachShader       = Window::registerFunction("glAttachShader", ext, v20);
    funcShaderSource       = Window::registerFunction("glShaderSource", ext, v20);
    funcCompileShader      = Window::registerFunction("glCompileShader", ext, v20);
    funcLinkProgram        = Window::registerFunction("glLinkProgram", ext, v20);
    funcGetShaderInfoLog   = Window::registerFunction("glGetShaderInfoLog", ext, v20);
    funcGetProgramInfoLog  = Window::registerFunction("glGetProgramInfoLog", ext, v20);
    funcUseProgram         = Window::registerFunction("glUseProgram", ext, v20);
    funcGetShaderiv        = Window::registerFunction("glGetShaderiv", ext, v20);
    funcGetProgramiv       = Window::registerFunction("glGetProgramiv", ext, v20);
    funcGetUniformLocation = Window::registerFunction("glGetUniformLocation", ext, v20);
    funcBindAttribLocation = Window::registerFunction("glBindAttribLocation", ext, v20);
    funcGetAttribLocation  = Window::registerFunction("glGetAttribLocation", ext, v20);
    funcUniform1i          = Window::registerFunction("glUniform1i", ext, v20);
    funcUniform1iv         = Window::registerFunction("glUniform1iv", ext, v20);
    funcUniform2iv         = Window::registerFunction("glUniform2iv", ext, v20);
    funcUniform3iv         = Window::registerFunction("glUniform3iv", ext, v20);
    funcUniform4iv         = Window::registerFunction("glUniform4iv", ext, v20);
    funcUniform1f          = Window::registerFunction("glUniform1f", ext, v20);
    funcUniform1fv         = Window::registerFunction("glUniform1fv", ext, v20);
    funcUniform2fv         = Window::registerFunction("glUniform2fv", ext, v20);
    funcUniform3fv         = Window::registerFunction("glUniform3fv", ext, v20);
    funcUniform4fv         = Window::registerFunction("glUniform4fv", ext, v20);
    funcUniformMatrix4fv   = Window::registerFunction("glUniformMatrix4fv", ext, v20);
    funcGetUniformiv       = Window::registerFunction("glGetUniformiv", ext, v20);
    funcGetUniformfv       = Window::registerFunction("glGetUniformfv", ext, v20);

    funcProgramParameteri =
        Window::registerFunction("glProgramParameteriEXT", Int32(extGeometry), 0xFFFF);
}

UInt32 SHLChunk::getFuncUniform1i(void) { return funcUniform1i; }
UInt32 SHLChunk::getFuncUniform1iv(void) { return funcUniform1iv; }
UInt32 SHLChunk::getFuncUniform2iv(void) { return funcUniform2iv; }
UInt32 SHLChunk::getFuncUniform3iv(void) { return funcUniform3iv; }
UInt32 SHLChunk::getFuncUniform4iv(void) { return funcUniform4iv; }
UInt32 SHLChunk::getFuncUniform1f(void) { return funcUniform1f; }
UInt32 SHLChunk::getFuncUniform1fv(void) { return funcUniform1fv; }
UInt32 SHLChunk::getFuncUniform2fv(void) { return funcUniform2fv; }
UInt32 SHLChunk::getFuncUniform3fv(void) { return funcUniform3fv; }
UInt32 SHLChunk::getFuncUniform4fv(void) { return funcUniform4fv; }
UInt32 SHLChunk::getFuncUniformMatrix4fv(void) { return funcUniformMatrix4fv; }
UInt32 SHLChunk::getFuncGetUniformiv(void) { return funcGetUniformiv; }
UInt32 SHLChunk::getFuncGetUniformfv(void) { return funcGetUniformfv; }
UInt32 SHLChunk::getFuncUseProgram(void) { return funcUseProgram; }
UInt32 SHLChunk::getFuncGetUniformLocation(void) { return funcGetUniformLocation; }

const StateChunkClass *SHLChunk::getClass(void) const
{
    return &_class;
}

// --- GL object ---------------------------------------------------------------------------

bool SHLChunk::ignoreGL(void) const
{
    return Int32(Thread::getAspect()) == getIgnoreGLForAspect();
}

void SHLChunk::registerGL(void)
{
    SHLChunkPtr thisPtr(this);
    Window::GLObjectFunctor functor =
        osgGLObjectFunctor(thisPtr, &SHLChunk::handleGL, &SHLChunk::destroyGL);

    UInt32 id = Window::registerGLObject(functor, 1);
    beginEditCP(thisPtr, GLIdFieldMask);
    setGLId(id);
    endEditCP(thisPtr, GLIdFieldMask);
}

void SHLChunk::onCreate(const SHLChunk *source)
{
    Inherited::onCreate(source);

    if(GlobalSystemState == Startup)
        return;

    // a copy must not share the source's GL object
    if(!ignoreGL())
        registerGL();
    else
        _sfGLId.setValue(0);
}

void SHLChunk::onDestroy(void)
{
    Inherited::onDestroy();

    if(getGLId() > 0)
        Window::destroyGLObject(getGLId(), 1);
}

bool SHLChunk::hasGLSL(Window *win)
{
    return win->hasExtension(extGLSL) || win->getGLVersion() >= 0x0200;
}

bool SHLChunk::hasGeometryShaders(Window *win)
{
    return win->hasExtension(extGeometry) || win->getGLVersion() >= 0x0302;
}

GLuint SHLChunk::getProgram(Window *win)
{
    return win->getGLObjectId(getGLId());
}

void SHLChunk::changed(BitVector whichField, UInt32 origin)
{
    if(!ignoreGL())
    {
        if(getGLId() == 0)
            registerGL();

        if(whichField & (VertexProgramFieldMask | FragmentProgramFieldMask |
                         GeometryProgramFieldMask | CgFrontEndFieldMask))
        {
            Window::reinitializeGLObject(getGLId());
        }

        if(whichField & (ParametersFieldMask | ProgramParameterNamesFieldMask |
                         ProgramParameterValuesFieldMask))
        {
            Window::refreshGLObject(getGLId());
        }
    }

    Inherited::changed(whichField, origin);
}

void SHLChunk::destroyGL(Window *win, UInt32 idstatus)
{
    UInt32                  osgid;
    Window::GLObjectStatusE mode;
    Window::unpackIdStatus(idstatus, osgid, mode);

    if(mode != Window::destroy)
        return;

    GLuint program = win->getGLObjectId(osgid);
    if(program != 0)
    {
        if(_deleteProgramCallback != NULL)
            _deleteProgramCallback(program);
        PFNGLDELETEPROGRAMPROC deleteProgram =
            windowFunc<PFNGLDELETEPROGRAMPROC>(win, funcDeleteProgram);
        if(deleteProgram != NULL)
            deleteProgram(program);
    }
    win->setGLObjectId(osgid, 0);
}

void SHLChunk::handleGL(Window *win, UInt32 idstatus)
{
    UInt32                  osgid;
    Window::GLObjectStatusE mode;
    Window::unpackIdStatus(idstatus, osgid, mode);

    if(!hasGLSL(win))
    {
        FWARNING(("OpenGL Shading Language is not supported, couldn't find extension "
                  "'GL_ARB_shading_language_100'!\n"));
        win->setGLObjectId(osgid, 0);
        return;
    }

    if(mode == Window::destroy || mode == Window::finaldestroy)
    {
        destroyGL(win, idstatus);
    }
    else if(mode == Window::initialize || mode == Window::reinitialize)
    {
        updateProgram(win);
        updateProgramParameters(win);
        updateParameters(win, getParameters(), true, true);
    }
    else if(mode == Window::needrefresh)
    {
        updateProgramParameters(win);
        updateParameters(win, getParameters(), true, true);
    }
    else
    {
        SWARNING << "SHLChunk(" << this << "::handleGL: Illegal mode: " << mode << " for id "
                 << osgid << std::endl;
    }
}

void SHLChunk::updateProgram(Window *win)
{
    GLSLFuncs gl(win);
    if(!gl.valid())
    {
        FWARNING(("SHLChunk::updateProgram: the OpenGL Shading Language functions are "
                  "missing!\n"));
        win->setGLObjectId(getGLId(), 0);
        return;
    }

    GLuint program = getProgram(win);
    if(program != 0)
    {
        if(_deleteProgramCallback != NULL)
            _deleteProgramCallback(program);
        gl.deleteProgram(program);
    }

    program = gl.createProgram();
    win->setGLObjectId(getGLId(), program);

    GLenum vertexType   = GL_VERTEX_SHADER;
    GLenum fragmentType = GL_FRAGMENT_SHADER;
    if(getCgFrontEnd())
    {
        if(win->hasExtension(extCg))
        {
            vertexType   = GL_CG_VERTEX_SHADER_EXT;
            fragmentType = GL_CG_FRAGMENT_SHADER_EXT;
        }
        else
        {
            FWARNING(("EXT_Cg_shader extension not supported, using GLSL front end!\n"));
        }
    }

    GLuint stages[3] = {0, 0, 0};

    if(!getVertexProgram().empty())
        stages[0] = compileStage(gl, vertexType, getVertexProgram(), "vertex");

    if(!getFragmentProgram().empty())
        stages[1] = compileStage(gl, fragmentType, getFragmentProgram(), "fragment");

    if(!getGeometryProgram().empty())
    {
        if(hasGeometryShaders(win))
            stages[2] = compileStage(gl, GL_GEOMETRY_SHADER_EXT, getGeometryProgram(),
                                     "geometry");
        else
            FWARNING(("GL_EXT_geometry_shader4 extension not supported!\n"));
    }

    // the geometry-shader parameters must be set before linking
    updateProgramParameters(win);

    if(stages[0] != 0 || stages[1] != 0 || stages[2] != 0)
    {
        for(UInt32 i = 0; i < 3; ++i)
        {
            if(stages[i] != 0)
            {
                gl.attachShader(program, stages[i]);
                // flagged for deletion: it goes with the program
                gl.deleteShader(stages[i]);
            }
        }

        gl.linkProgram(program);

        GLint status = 0;
        gl.getProgramiv(program, GL_LINK_STATUS, &status);
        std::string log = programLog(gl, program);

        if(status != 0)
        {
            if(_createProgramCallback != NULL)
                _createProgramCallback(program);
            if(!log.empty())
                FWARNING(("SHLChunk: link status: %s\n", log.c_str()));
        }
        else
        {
            if(!log.empty())
                FFATAL(("Couldn't link vertex and fragment program!\n%s\n", log.c_str()));
            gl.deleteProgram(program);
            win->setGLObjectId(getGLId(), 0);
        }
    }
    else
    {
        gl.deleteProgram(program);
        win->setGLObjectId(getGLId(), 0);
    }

    updateParameterLocations(win, getParameters());
    updateParameters(win, getParameters());
}

void SHLChunk::updateProgramParameters(Window *win)
{
    if(!win->hasExtension(extGeometry))
        return;

    GLuint program = getProgram(win);
    if(program == 0)
        return;

    PFNGLPROGRAMPARAMETERIEXTPROC f =
        windowFunc<PFNGLPROGRAMPARAMETERIEXTPROC>(win, funcProgramParameteri);
    if(f == NULL)
        return;

    const MFGLenum &names  = getProgramParameterNames();
    const MFUInt32 &values = getProgramParameterValues();
    for(UInt32 i = 0; i < names.size() && i < values.size(); ++i)
        f(program, names[i], GLint(values[i]));
}

void SHLChunk::updateParameterLocations(Window *win, const MFShaderParameterPtr &parameters)
{
    GLuint program = getProgram(win);
    if(program == 0)
    {
        FNOTICE(("SHLChunk::updateParameterLocations: program == 0!\n"
                 "This frame will probably be rendered wrong!\n"));
        return;
    }

    PFNGLGETUNIFORMLOCATIONPROC getLocation =
        windowFunc<PFNGLGETUNIFORMLOCATIONPROC>(win, funcGetUniformLocation);
    if(getLocation == NULL)
        return;

    for(UInt32 i = 0; i < parameters.size(); ++i)
    {
        ShaderParameterPtr p = parameters[i];
        if(p != NullFC)
            p->setLocation(getLocation(program, p->getName().c_str()));
    }

    checkOSGParameters(true);
}

void SHLChunk::updateParameters(Window *win, const MFShaderParameterPtr &parameters,
                                bool useProgram, bool force, bool keepProgramActive)
{
    GLuint program = getProgram(win);
    if(program == 0)
    {
        FNOTICE(("SHLChunk::updateParameters: program == 0!\n"
                 "This frame will probably be rendered wrong!\n"));
        return;
    }

    checkOSGParameters();

    if(parameters.empty())
        return;

    PFNGLUSEPROGRAMPROC         use         = windowFunc<PFNGLUSEPROGRAMPROC>(win, funcUseProgram);
    PFNGLGETUNIFORMLOCATIONPROC getLocation =
        windowFunc<PFNGLGETUNIFORMLOCATIONPROC>(win, funcGetUniformLocation);
    PFNGLUNIFORM1IPROC  uniform1i  = windowFunc<PFNGLUNIFORM1IPROC>(win, funcUniform1i);
    PFNGLUNIFORM1FPROC  uniform1f  = windowFunc<PFNGLUNIFORM1FPROC>(win, funcUniform1f);
    PFNGLUNIFORM1FVPROC uniform1fv = windowFunc<PFNGLUNIFORM1FVPROC>(win, funcUniform1fv);
    PFNGLUNIFORM2FVPROC uniform2fv = windowFunc<PFNGLUNIFORM2FVPROC>(win, funcUniform2fv);
    PFNGLUNIFORM3FVPROC uniform3fv = windowFunc<PFNGLUNIFORM3FVPROC>(win, funcUniform3fv);
    PFNGLUNIFORM4FVPROC uniform4fv = windowFunc<PFNGLUNIFORM4FVPROC>(win, funcUniform4fv);
    PFNGLUNIFORMMATRIX4FVPROC uniformMatrix4fv =
        windowFunc<PFNGLUNIFORMMATRIX4FVPROC>(win, funcUniformMatrix4fv);

    if(use == NULL || getLocation == NULL || uniform1i == NULL || uniform1f == NULL ||
       uniform1fv == NULL || uniform2fv == NULL || uniform3fv == NULL || uniform4fv == NULL ||
       uniformMatrix4fv == NULL)
        return;

    // whatever was bound is bound again afterwards, so that sending values
    // in the middle of a frame doesn't unbind the active program
    GLint previous = 0;
    if(useProgram)
    {
        glGetIntegerv(GL_CURRENT_PROGRAM, &previous);
        if(GLuint(previous) != program)
            use(program);
    }

    for(UInt32 i = 0; i < parameters.size(); ++i)
    {
        ShaderParameterPtr p = parameters[i];
        if(p == NullFC)
            continue;

        const std::string &name = p->getName();
        if(isOSGName(name))
            continue;

        if(!force)
        {
            if(!p->hasChanged())
                continue;
            p->resetChanged();
        }

        if(p->getLocation() == -2)
            p->setLocation(getLocation(program, name.c_str()));

        GLint loc   = p->getLocation();
        bool  known = loc >= 0;

        switch(p->getTypeId())
        {
            case ShaderParameter::SHPTypeBool:
                if(known)
                    uniform1i(loc, ShaderParameterBoolPtr::dcast(p)->getValue() ? 1 : 0);
                break;
            case ShaderParameter::SHPTypeInt:
                if(known)
                    uniform1i(loc, ShaderParameterIntPtr::dcast(p)->getValue());
                break;
            case ShaderParameter::SHPTypeReal:
                if(known)
                    uniform1f(loc, ShaderParameterRealPtr::dcast(p)->getValue());
                break;
            case ShaderParameter::SHPTypeVec2f:
                if(known)
                    uniform2fv(loc, 1, ShaderParameterVec2fPtr::dcast(p)->getValue().getValues());
                break;
            case ShaderParameter::SHPTypeVec3f:
                if(known)
                    uniform3fv(loc, 1, ShaderParameterVec3fPtr::dcast(p)->getValue().getValues());
                break;
            case ShaderParameter::SHPTypeVec4f:
                if(known)
                    uniform4fv(loc, 1, ShaderParameterVec4fPtr::dcast(p)->getValue().getValues());
                break;
            case ShaderParameter::SHPTypeMatrix:
                if(known)
                    uniformMatrix4fv(loc, 1, GL_FALSE,
                                     ShaderParameterMatrixPtr::dcast(p)->getValue().getValues());
                break;
            case ShaderParameter::SHPTypeMInt:
            {
                // integer arrays are not sent, as in OpenSG: only the check
                const MFInt32 &v = ShaderParameterMIntPtr::dcast(p)->getValue();
                known            = known && !v.empty();
                break;
            }
            case ShaderParameter::SHPTypeMReal:
            {
                const MFReal32 &v = ShaderParameterMRealPtr::dcast(p)->getValue();
                known             = known && !v.empty();
                if(known)
                    uniform1fv(loc, GLsizei(v.size()), &v[0]);
                break;
            }
            case ShaderParameter::SHPTypeMVec2f:
            {
                const MFVec2f &v = ShaderParameterMVec2fPtr::dcast(p)->getValue();
                known            = known && !v.empty();
                if(known)
                    uniform2fv(loc, GLsizei(v.size()), v[0].getValues());
                break;
            }
            case ShaderParameter::SHPTypeMVec3f:
            {
                const MFVec3f &v = ShaderParameterMVec3fPtr::dcast(p)->getValue();
                known            = known && !v.empty();
                if(known)
                    uniform3fv(loc, GLsizei(v.size()), v[0].getValues());
                break;
            }
            case ShaderParameter::SHPTypeMVec4f:
            {
                const MFVec4f &v = ShaderParameterMVec4fPtr::dcast(p)->getValue();
                known            = known && !v.empty();
                if(known)
                    uniform4fv(loc, GLsizei(v.size()), v[0].getValues());
                break;
            }
            case ShaderParameter::SHPTypeMMatrix:
            {
                const MFMatrix &v = ShaderParameterMMatrixPtr::dcast(p)->getValue();
                known             = known && !v.empty();
                if(known)
                    uniformMatrix4fv(loc, GLsizei(v.size()), GL_FALSE, v[0].getValues());
                break;
            }
            default:
                FWARNING(("Parameter '%s' has unknown type %d!\n", name.c_str(),
                          Int32(p->getTypeId())));
                known = true;
                break;
        }

        if(!known && getUnknownParameterWarning())
            FWARNING(("Unknown parameter '%s'!\n", name.c_str()));
    }

    if(useProgram && !keepProgramActive && GLuint(previous) != program)
        use(GLuint(previous));
}

void SHLChunk::checkOSGParameters(bool force)
{
    const MFShaderParameterPtr &parameters = getParameters();

    if(!force && !_cleared_parameters && _oldParameterSize == parameters.size())
        return;

    _cleared_parameters = false;
    _osgParameters.clear();

    for(UInt32 i = 0; i < parameters.size(); ++i)
    {
        ShaderParameterPtr p = parameters[i];
        if(p == NullFC)
            continue;

        const std::string &name = p->getName();

        std::map<std::string, parametercbfp>::const_iterator user =
            _userParameterCallbacks.find(name);
        std::map<std::string, osgparametercbfp>::const_iterator userOSG =
            _userOSGParameterCallbacks.find(name);

        if(user != _userParameterCallbacks.end())
        {
            OSGParameter entry = {p, NULL, user->second, true};
            _osgParameters.push_back(entry);
        }
        else if(userOSG != _userOSGParameterCallbacks.end())
        {
            OSGParameter entry = {p, userOSG->second, NULL, true};
            _osgParameters.push_back(entry);
        }
        else if(isOSGName(name))
        {
            bool found = false;
            for(UInt32 b = 0; b < sizeof(builtIns) / sizeof(builtIns[0]); ++b)
            {
                if(name == builtIns[b].name)
                {
                    OSGParameter entry = {p, builtIns[b].fp, NULL, builtIns[b].perObject};
                    _osgParameters.push_back(entry);
                    found = true;
                    break;
                }
            }
            if(!found)
                FWARNING(("SHLChunk::checkOSGParameters : unknown osg parameter '%s'\n",
                          name.c_str()));
        }
        else
        {
            continue;
        }

        p->setLocation(-2);
    }

    _oldParameterSize = parameters.size();
}

void SHLChunk::updateOSGParameters(DrawActionBase *action, GLuint program, bool update)
{
    if(_osgParameters.empty() && _userParameterCallback == NULL)
        return;

    Window *win = action->getWindow();
    GetUniformLocationFunc getLocation =
        reinterpret_cast<GetUniformLocationFunc>(win->getFunction(funcGetUniformLocation));
    if(getLocation == NULL)
        return;

    if(_userParameterCallback != NULL)
        _userParameterCallback(getLocation, action, program);

    for(UInt32 i = 0; i < _osgParameters.size(); ++i)
    {
        const OSGParameter &entry = _osgParameters[i];

        // a camera value is the same for every object of a frame
        if(update && !entry.perObject)
            continue;

        if(entry.fp != NULL)
            entry.fp(getLocation, action, program);
        else if(entry.osgfp != NULL)
            entry.osgfp(entry.parameter, action, program);
    }
}

// --- state chunk --------------------------------------------------------------------------

void SHLChunk::activate(DrawActionBase *action, UInt32)
{
    Window *win = action != NULL ? action->getWindow() : NULL;
    if(win == NULL || getGLId() == 0)
        return;

    win->validateGLObject(getGLId());

    GLuint program = getProgram(win);
    if(program == 0)
        return;

    PFNGLUSEPROGRAMPROC use = windowFunc<PFNGLUSEPROGRAMPROC>(win, funcUseProgram);
    if(use == NULL)
        return;
    use(program);

    updateOSGParameters(action, program, false);

    if(getPointSize())
        glEnable(GL_VERTEX_PROGRAM_POINT_SIZE_ARB);
}

void SHLChunk::changeFrom(DrawActionBase *action, StateChunk *old_chunk, UInt32)
{
    SHLChunk *old = dynamic_cast<SHLChunk *>(old_chunk);
    if(old == NULL)
    {
        FWARNING(("SHLChunk::changeFrom: caught non-SHLChunk!\n"));
        return;
    }

    if(old == this)
        return;

    Window *win = action != NULL ? action->getWindow() : NULL;
    if(win == NULL || getGLId() == 0)
        return;

    win->validateGLObject(getGLId());

    PFNGLUSEPROGRAMPROC use = windowFunc<PFNGLUSEPROGRAMPROC>(win, funcUseProgram);
    if(use == NULL)
        return;

    GLuint program = getProgram(win);
    if(program != 0)
    {
        use(program);
        updateOSGParameters(action, program, false);

        if(getPointSize() != old->getPointSize())
        {
            if(getPointSize())
                glEnable(GL_VERTEX_PROGRAM_POINT_SIZE_ARB);
            else
                glDisable(GL_VERTEX_PROGRAM_POINT_SIZE_ARB);
        }
    }
    else if(win->getGLObjectId(old->getGLId()) != 0)
    {
        use(0);
    }
}

void SHLChunk::deactivate(DrawActionBase *action, UInt32)
{
    Window *win = action != NULL ? action->getWindow() : NULL;
    if(win == NULL || getGLId() == 0)
        return;

    if(getProgram(win) == 0)
        return;

    PFNGLUSEPROGRAMPROC use = windowFunc<PFNGLUSEPROGRAMPROC>(win, funcUseProgram);
    if(use != NULL)
        use(0);

    if(getPointSize())
        glDisable(GL_VERTEX_PROGRAM_POINT_SIZE_ARB);
}

void SHLChunk::update(DrawActionBase *action)
{
    Window *win = action != NULL ? action->getWindow() : NULL;
    if(win == NULL || getGLId() == 0)
        return;

    win->validateGLObject(getGLId());

    GLuint program = getProgram(win);
    if(program == 0)
        return;

    updateOSGParameters(action, program, true);
}

Real32 SHLChunk::switchCost(StateChunk *)
{
    return 0;
}

bool SHLChunk::operator<(const StateChunk &other) const
{
    return this < &other;
}

bool SHLChunk::operator==(const StateChunk &other) const
{
    const SHLChunk *tother = dynamic_cast<const SHLChunk *>(&other);
    if(tother == NULL)
        return false;
    if(tother == this)
        return true;
    return getVertexProgram() == tother->getVertexProgram() &&
           getFragmentProgram() == tother->getFragmentProgram() &&
           getMFParameters()->size() == tother->getMFParameters()->size();
}

bool SHLChunk::operator!=(const StateChunk &other) const
{
    return !(*this == other);
}

// --- program parameters ----------------------------------------------------------------

void SHLChunk::addProgramParameter(GLenum name, UInt32 value)
{
    editMFProgramParameterNames()->push_back(name);
    editMFProgramParameterValues()->push_back(value);
}

void SHLChunk::subProgramParameter(GLenum name)
{
    MFGLenum &names  = *editMFProgramParameterNames();
    MFUInt32 &values = *editMFProgramParameterValues();
    for(UInt32 i = 0; i < names.size(); ++i)
    {
        if(names[i] == name)
        {
            names.erase(names.begin() + i);
            if(i < values.size())
                values.erase(values.begin() + i);
            return;
        }
    }
}

void SHLChunk::setProgramParameter(GLenum name, UInt32 value)
{
    subProgramParameter(name);
    addProgramParameter(name, value);
}

UInt32 SHLChunk::getProgramParameter(GLenum name)
{
    const MFGLenum &names  = getProgramParameterNames();
    const MFUInt32 &values = getProgramParameterValues();
    for(UInt32 i = 0; i < names.size() && i < values.size(); ++i)
        if(names[i] == name)
            return values[i];

    FWARNING(("SHLChunk::getProgramParameter : Couldn't find program parameter %u!\n",
              UInt32(name)));
    return 0;
}

std::vector<std::pair<GLenum, UInt32> > SHLChunk::getProgramParameters(void)
{
    std::vector<std::pair<GLenum, UInt32> > result;
    const MFGLenum &names  = getProgramParameterNames();
    const MFUInt32 &values = getProgramParameterValues();
    for(UInt32 i = 0; i < names.size() && i < values.size(); ++i)
        result.push_back(std::make_pair(names[i], values[i]));
    return result;
}

void SHLChunk::clearProgramParameters(void)
{
    editMFProgramParameterNames()->clear();
    editMFProgramParameterValues()->clear();
}

// --- callbacks ----------------------------------------------------------------------------

void SHLChunk::addParameterCallback(const char *name, parametercbfp fp)
{
    if(name == NULL)
        return;
    setUniformParameter(name, Int32(0));
    _userParameterCallbacks[name] = fp;
}

void SHLChunk::addParameterCallback(const char *name, osgparametercbfp fp)
{
    if(name == NULL)
        return;
    setUniformParameter(name, Int32(0));
    _userOSGParameterCallbacks[name] = fp;
}

void SHLChunk::setParameterCallback(parametercbfp fp)
{
    _userParameterCallback = fp;
}

SHLChunk::parametercbfp SHLChunk::getParameterCallback(void)
{
    return _userParameterCallback;
}

void SHLChunk::setCreateProgramCallback(programcbfp fp)
{
    _createProgramCallback = fp;
}

SHLChunk::programcbfp SHLChunk::getCreateProgramCallback(void)
{
    return _createProgramCallback;
}

void SHLChunk::setDeleteProgramCallback(programcbfp fp)
{
    _deleteProgramCallback = fp;
}

SHLChunk::programcbfp SHLChunk::getDeleteProgramCallback(void)
{
    return _deleteProgramCallback;
}

void SHLChunk::setClusterId(Int32 id)
{
    clusterId = id;
}

void SHLChunk::dump(UInt32, const BitVector) const
{
    SLOG << "Dump SHLChunk NI" << std::endl;
}

OSG_END_NAMESPACE
