/// A GL context and the viewports rendered into it.
///
/// Besides the port list the window keeps, per context, what other classes
/// need in order to own OpenGL resources:
///  - the GL-object registry: an owner registers a functor once and gets a
///    small id; validating the id with the context current calls the functor
///    with "initialize" the first time in this context, later with
///    "needrefresh" / "reinitialize" after a refresh / reinit request, and
///    with "destroy" / "finaldestroy" at the end of the frame after the
///    owner destroyed it. The status sits in the low three bits of the
///    functor's second argument, the id above it.
///  - the extension and function registry: names are registered statically
///    (any time, no context needed); frameInit() looks up availability and
///    entry points for this context and makes them usable through
///    hasExtension(id) and getFunction(id).
///
/// Window is abstract: the window-system classes (PassiveWindow, EGLWindow)
/// implement init, activate, deactivate and swap.
#ifndef _OSGWINDOW_H_
#define _OSGWINDOW_H_

#include <OpenSG/OSGWindowBase.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGTypedFunctors.h>
#include <OpenSG/OSGVector.h>

#include <list>
#include <map>
#include <string>
#include <utility>
#include <vector>

OSG_BEGIN_NAMESPACE

class DrawAction;
class RenderActionBase;

/// A functor bound to one container: called with (Window *win, UInt32
/// idstatus) it calls objPtr->method(win, idstatus) on the object in the
/// calling thread's aspect. The member may belong to a base class of the
/// container's class and may be virtual.
template <class ObjPtrT, class CallArgT, class Arg1T, class ClassT>
inline TypedFunctor2Base<void, PtrCallArg<CallArgT>, ArgsCollector<Arg1T> >
osgTypedMethodVoidFunctor2ObjCPtrPtr(ObjPtrT objPtr,
                                     void (ClassT::*pFunc)(CallArgT *, Arg1T))
{
    typedef typename ObjPtrT::StoredObjectType ObjectT;
    typedef void (ObjectT::*MethodT)(CallArgT *, Arg1T);

    MethodT method = pFunc;

    return TypedFunctor2Base<void, PtrCallArg<CallArgT>, ArgsCollector<Arg1T> >(
        [objPtr, method](CallArgT *arg, Arg1T arg1) {
            ObjectT *obj = objPtr.getCPtr();
            if(obj != NULL)
                (obj->*method)(arg, arg1);
        });
}

class Window : public WindowBase
{
  private:
    typedef WindowBase Inherited;

  public:
    /// What a GL-object functor is asked to do.
    enum GLObjectStatusE
    {
        notused      = 1,
        initialize   = 2,
        reinitialize = 3,
        initialized  = 4,
        needrefresh  = 5,
        destroy      = 6,
        finaldestroy = 7
    };

    enum
    {
        statusShift = 3,
        statusMask  = 7
    };

    /// The initial value of static extension and function ids: "never
    /// registered". The registry never hands it out.
    enum
    {
        invalidExtensionID = 0x7FFFFFFF,
        invalidFunctionID  = 0x7FFFFFFF
    };

    typedef TypedVoidFunctor2Base<PtrCallArg<Window>, ArgsCollector<UInt32> >
        GLObjectFunctor;

    typedef void (*GLExtensionFunction)(void);

    /// Value of a registered constant that could not be read.
    static const Real32 unknownConstant;

    // --- GL objects ----------------------------------------------------------

    /// Hands out num consecutive ids (the first is returned, never 0) that
    /// share the functor; every live window starts them as never
    /// initialised.
    static UInt32 registerGLObject(GLObjectFunctor functor, UInt32 num = 1);

    /// Calls the functor with initialize, reinitialize or needrefresh if
    /// this context needs it; the context must be current.
    void validateGLObject(UInt32 id);
    /// activate, frameInit, validate every id, frameExit.
    void validateAllGLObjects(void);

    /// The next validation in every window reports needrefresh.
    static void refreshGLObject(UInt32 id);
    static void refreshAllGLObjects(void);
    /// The next validation in every window that initialised the object
    /// reports reinitialize.
    static void reinitializeGLObject(UInt32 id);
    static void reinitializeAllGLObjects(void);

    /// Frees the ids: at once if no window initialised them, otherwise each
    /// such window calls destroy (and the last one finaldestroy) in its
    /// next frameExit.
    static void destroyGLObject(UInt32 id, UInt32 num = 1);

    static void unpackIdStatus(UInt32 idstatus, UInt32 &id,
                               GLObjectStatusE &status);

    /// The GL name the owner made for the id in this context.
    void   setGLObjectId(UInt32 osgId, UInt32 glId);
    /// 0 for an id this window knows nothing of.
    UInt32 getGLObjectId(UInt32 osgId);

    /// Size of the id table, the reserved id 0 included.
    static UInt32 getGLObjectsSize(void);

    // --- extensions and functions --------------------------------------------

    /// The id of the name (appended if new); 0xFFFFFFFF for NULL.
    static UInt32 registerExtension(const Char8 *s);
    /// Names separated by commas, full stops or blanks are treated as not
    /// reported by any context.
    static void   ignoreExtensions(const Char8 *s);
    /// The id of the name (appended with ext and version if new). At
    /// frameInit a window loads the function if ext is -1, or it has
    /// extension ext, or its GL version ((major << 8) + minor) is at least
    /// version; 0xFFFF means "only with the extension".
    static UInt32 registerFunction(const Char8 *s, Int32 ext = -1,
                                   UInt32 version = 0xFFFF);
    /// Queues a constant to be read with glGetFloatv at the next frameInit.
    static void   registerConstant(GLenum val);
    /// The id of a registered extension, -1 if unknown.
    static Int32  getExtensionId(const Char8 *s);

    /// Availability in this context as of the last frameInit; an id beyond
    /// that warns and gives false.
    bool hasExtension(UInt32 id);
    /// Whether the context reports the name (and it is not ignored).
    bool hasExtension(const Char8 *s);
    /// Available in every window so far.
    static bool hasCommonExtension(UInt32 id);

    /// The entry point in this context; NULL (with an info line) for an id
    /// beyond the table or a function that is not there.
    GLExtensionFunction getFunction(UInt32 id);
    GLExtensionFunction getFunctionNoCheck(UInt32 id);

    Real32       getConstantValue(GLenum val);
    const Vec2f &getConstantValuev(GLenum val);

    /// Prints the context's extension list to standard output.
    void dumpExtensions(void);

    /// Looks a GL entry point up by name (eglGetProcAddress, then the
    /// process's symbols); NULL with a warning if there is none.
    GLExtensionFunction getFunctionByName(const Char8 *s);
    /// A library to search for entry points as a last resort.
    static void setGLLibraryName(const Char8 *s);

    /// (major << 8) + minor, read at the first frameInit.
    UInt32 getGLVersion(void);

    static const std::vector<std::string> &getRegisteredExtensions(void);
    static const std::vector<std::string> &getRegisteredFunctions(void);
    static const std::vector<std::string> &getIgnoredExtensions(void);
    const std::vector<std::string>        &getExtensions(void);

    // --- ports -------------------------------------------------------------------

    /// None of these counts references; each sets or clears the port's
    /// parent.
    void addPort(const ViewportPtr &portP);
    void insertPort(UInt32 portIndex, const ViewportPtr &portP);
    void replacePort(UInt32 portIndex, const ViewportPtr &portP);
    void replacePortBy(const ViewportPtr &portP, const ViewportPtr &newportP);
    void subPort(const ViewportPtr &portP);
    void subPortByObj(const ViewportPtr &portP);
    void subPort(UInt32 portIndex);
    /// Clears each port's parent, releases one reference of each and
    /// empties the list.
    void clearPorts(void);

    // --- size --------------------------------------------------------------------

    /// Sets width and height without an edit and without a pending resize.
    void setSize(UInt16 width, UInt16 height);
    bool isResizePending(void);

    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

    // --- the frame ---------------------------------------------------------------

    /// Records the new size and marks a resize as pending.
    virtual void resize(int width, int height);
    /// Applies a pending resize (glViewport over the whole window).
    virtual void resizeGL(void);

    /// Makes the extension and function tables of this context current:
    /// reads version and extensions once, then adds what was registered
    /// since the last call. Cheap when nothing is new; call it after
    /// registering functions in the middle of a frame. The context must be
    /// current (window classes that own their context make it so).
    virtual void frameInit(void);
    /// Runs the destroy list, then drains stray GL errors (logged when
    /// OSG_DEBUG is set).
    virtual void frameExit(void);

    /// activate, frameInit, resizeGL, drawAllViewports, swap, frameExit.
    virtual void draw(DrawAction *action = NULL);
    virtual void drawAllViewports(DrawAction *action = NULL);
    /// activate, frameInit, renderAllViewports, swap, frameExit.
    virtual void render(RenderActionBase *action = NULL);
    /// Sets the window on the action and renders the ports in list order.
    virtual void renderAllViewports(RenderActionBase *action = NULL);

    // --- window system -------------------------------------------------------

    virtual void init(void)       = 0;
    virtual void activate(void)   = 0;
    virtual void deactivate(void) = 0;
    virtual void swap(void)       = 0;

  protected:
    /// Initial GL state (alignment, depth test, normalisation, black
    /// GL_LIGHT0), then frameInit.
    virtual void setupGL(void);

    static UInt32 packIdStatus(UInt32 id, GLObjectStatusE status)
    {
        return (id << statusShift) | UInt32(status);
    }

    Window(void);
    Window(const Window &source);
    virtual ~Window(void);

    /// Instances (not prototypes) join the list of live windows.
    void onCreate(const Window *source = NULL);
    /// Leaves the list; objects initialised here lose this window's count
    /// without destroy callbacks, since the context need not be current.
    virtual void onDestroy(void);

    // The bookkeeping of the GL-object registry is not for users.
    using Inherited::getSFGlObjectEventCounter;
    using Inherited::getGlObjectEventCounter;
    using Inherited::setGlObjectEventCounter;
    using Inherited::getMFGlObjectLastRefresh;
    using Inherited::getGlObjectLastRefresh;
    using Inherited::getMFGlObjectLastReinitialize;
    using Inherited::getGlObjectLastReinitialize;

  private:
    friend class FieldContainer;
    friend class WindowBase;

    /// One registration: shared by the num ids of a block.
    struct GLObject
    {
        GLObject(const GLObjectFunctor &functor, UInt32 num) :
            _functor(functor), _refCounter(0), _firstId(0), _num(num)
        {
        }

        GLObjectFunctor _functor;
        UInt32          _refCounter; // windows that initialised it
        UInt32          _firstId;    // first id of the block
        UInt32          _num;        // size of the block
    };

    static void initMethod(void);

    /// Grows the per-window vectors of every live window to cover size ids.
    void   growGLObjectTables(UInt32 size);
    /// Whether an id of obj's block other than except was initialised in
    /// this window.
    bool   initializedHere(const GLObject *obj, UInt32 except) const;
    /// Calls destroy / finaldestroy for the queued blocks.
    void   runDestroyList(void);
    void   readGLVersionAndExtensions(void);
    WindowPtr getPtr(void);

    static std::vector<WindowPtr>   _allWindows;
    static std::vector<GLObject *>  _glObjects;

    static std::vector<std::string> _registeredExtensions;
    static std::vector<std::string> _ignoredExtensions;
    static std::vector<bool>        _commonExtensions;
    static std::vector<std::string> _registeredFunctions;
    static std::vector<Int32>       _registeredFunctionExts;
    static std::vector<UInt32>      _registeredFunctionVersions;
    static std::vector<GLenum>      _registeredConstants;
    static std::string              _glLibraryName;
    static UInt32                   _currentWindowId;

    std::vector<UInt32>              _lastValidate;
    std::vector<UInt32>              _ids;
    UInt32                           _glVersion;
    bool                             _versionRead;
    std::vector<std::string>         _extensions;
    std::vector<bool>                _availExtensions;
    std::vector<GLExtensionFunction> _extFunctions;
    UInt32                           _numConstantsRead;
    std::map<GLenum, Vec2f>          _availConstants;
    std::list<std::pair<UInt32, UInt32> > _glObjectDestroyList;
    UInt32                           _windowId;

    void operator=(const Window &source);
};

typedef Window *WindowP;

/// The functor of a container's GL objects. destroy and finaldestroy arrive
/// at the end of a frame, after the container may be gone, so they go to a
/// static handler that uses only the window and the id; every other status
/// goes to the container's own handler.
template <class ObjPtrT, class ClassT>
inline Window::GLObjectFunctor osgGLObjectFunctor(ObjPtrT objPtr,
                                                  void (ClassT::*handle)(Window *, UInt32),
                                                  void (*destroy)(Window *, UInt32))
{
    typedef typename ObjPtrT::StoredObjectType ObjectT;
    void (ObjectT::*method)(Window *, UInt32) = handle;

    return Window::GLObjectFunctor([objPtr, method, destroy](Window *win, UInt32 idstatus) {
        UInt32                  id;
        Window::GLObjectStatusE mode;
        Window::unpackIdStatus(idstatus, id, mode);
        if(mode == Window::destroy || mode == Window::finaldestroy)
        {
            destroy(win, idstatus);
            return;
        }
        ObjectT *obj = objPtr.getCPtr();
        if(obj != NULL)
            (obj->*method)(win, idstatus);
    });
}

OSG_END_NAMESPACE

#endif
