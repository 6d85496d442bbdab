#include <OpenSG/OSGWindow.h>

#include <OpenSG/OSGDrawAction.h>
#include <OpenSG/OSGGLU.h>
#include <OpenSG/OSGRenderActionBase.h>
#include <OpenSG/OSGViewport.h>

#include <EGL/egl.h>

#include <dlfcn.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <mutex>

OSG_BEGIN_NAMESPACE

namespace
{

// Guards the class-wide tables (registrations, GL-object slots, the window
// list); registration may happen on any thread.
std::recursive_mutex &staticLock(void)
{
    static std::recursive_mutex lock;
    return lock;
}

// Guards the per-object counts of windows that initialised an object.
std::mutex &refCountLock(void)
{
    static std::mutex lock;
    return lock;
}

// Extension lists are separated by blanks; the ignore list also by commas
// and full stops.
std::vector<std::string> splitNames(const Char8 *s)
{
    std::vector<std::string> names;
    std::string              cur;

    for(const Char8 *p = s; p != NULL && *p != '\0'; ++p)
    {
        if(*p == ' ' || *p == ',' || *p == '.' || *p == '\t' || *p == '\n')
        {
            if(!cur.empty())
                names.push_back(cur);
            cur.clear();
        }
        else
        {
            cur += *p;
        }
    }

    if(!cur.empty())
        names.push_back(cur);

    return names;
}

bool contains(const std::vector<std::string> &sorted, const std::string &name)
{
    return std::binary_search(sorted.begin(), sorted.end(), name);
}

} // namespace

const Real32 Window::unknownConstant = -std::numeric_limits<Real32>::infinity();

std::vector<WindowPtr>          Window::_allWindows;
std::vector<Window::GLObject *> Window::_glObjects;
std::vector<std::string>        Window::_registeredExtensions;
std::vector<std::string>        Window::_ignoredExtensions;
std::vector<bool>               Window::_commonExtensions;
std::vector<std::string>        Window::_registeredFunctions;
std::vector<Int32>              Window::_registeredFunctionExts;
std::vector<UInt32>             Window::_registeredFunctionVersions;
std::vector<GLenum>             Window::_registeredConstants;
std::string                     Window::_glLibraryName;
UInt32                          Window::_currentWindowId = 0;

// --- construction --------------------------------------------------------------

Window::Window(void) :
    Inherited(),
    _lastValidate(),
    _ids(),
    _glVersion(0),
    _versionRead(false),
    _extensions(),
    _availExtensions(),
    _extFunctions(),
    _numConstantsRead(0),
    _availConstants(),
    _glObjectDestroyList(),
    _windowId(0)
{
}

// A new window knows every object registered so far, none of them
// initialised; the context-dependent tables start empty.
Window::Window(const Window &source) :
    Inherited(source),
    _lastValidate(),
    _ids(),
    _glVersion(0),
    _versionRead(false),
    _extensions(),
    _availExtensions(),
    _extFunctions(),
    _numConstantsRead(0),
    _availConstants(),
    _glObjectDestroyList(),
    _windowId(0)
{
    std::lock_guard<std::recursive_mutex> guard(staticLock());

    const UInt32 size = UInt32(_glObjects.size());

    _mfGlObjectLastRefresh.clear();
    _mfGlObjectLastRefresh.resize(size, 0);
    _mfGlObjectLastReinitialize.clear();
    _mfGlObjectLastReinitialize.resize(size, 0);
    _lastValidate.resize(size, 0);
}

Window::~Window(void)
{
}

void Window::initMethod(void)
{
}

WindowPtr Window::getPtr(void)
{
    return WindowPtr(this);
}

void Window::onCreate(const Window *source)
{
    // Prototypes are made without a source and never render.
    if(source == NULL)
        return;

    std::lock_guard<std::recursive_mutex> guard(staticLock());

    _windowId = ++_currentWindowId;
    _allWindows.push_back(getPtr());
}

void Window::onDestroy(void)
{
    {
        std::lock_guard<std::recursive_mutex> guard(staticLock());

        WindowPtr self = getPtr();

        std::vector<WindowPtr>::iterator it =
            std::find(_allWindows.begin(), _allWindows.end(), self);

        if(it != _allWindows.end())
        {
            _allWindows.erase(it);

            // The context need not be current: no callbacks, only the
            // counts. An object already queued for destruction here whose
            // count drops to zero is freed on the spot.
            std::vector<GLObject *> seen;

            for(UInt32 id = 1; id < _glObjects.size() &&
                               id < _mfGlObjectLastReinitialize.size();
                ++id)
            {
                GLObject *obj = _glObjects[id];

                if(obj == NULL || _mfGlObjectLastReinitialize[id] == 0 ||
                   std::find(seen.begin(), seen.end(), obj) != seen.end())
                    continue;

                seen.push_back(obj);

                bool queued = false;
                for(std::list<std::pair<UInt32, UInt32> >::iterator d =
                        _glObjectDestroyList.begin();
                    d != _glObjectDestroyList.end(); ++d)
                {
                    if(d->first < _glObjects.size() &&
                       _glObjects[d->first] == obj)
                        queued = true;
                }

                UInt32 count;
                {
                    std::lock_guard<std::mutex> rc(refCountLock());
                    count = obj->_refCounter > 0 ? --obj->_refCounter : 0;
                }

                if(queued && count == 0)
                {
                    for(UInt32 j = 0; j < _glObjects.size(); ++j)
                        if(_glObjects[j] == obj)
                            _glObjects[j] = NULL;
                    delete obj;
                }
            }

            _glObjectDestroyList.clear();
        }
    }

    Inherited::onDestroy();
}

void Window::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void Window::dump(UInt32, const BitVector) const
{
    SLOG << "Dump Window NI" << std::endl;
}

// --- GL-object registry ---------------------------------------------------------

UInt32 Window::registerGLObject(GLObjectFunctor functor, UInt32 num)
{
    if(num == 0)
        num = 1;

    std::lock_guard<std::recursive_mutex> guard(staticLock());

    // Id 0 means "no object" everywhere.
    if(_glObjects.empty())
        _glObjects.push_back(NULL);

    GLObject *obj = new GLObject(functor, num);
    UInt32    id  = 0;

    if(_glObjects.capacity() >= _glObjects.size() + num)
    {
        id = UInt32(_glObjects.size());
    }
    else
    {
        // A run of freed slots big enough for the block.
        UInt32 run = 0;

        for(UInt32 i = 1; i < _glObjects.size(); ++i)
        {
            run = (_glObjects[i] == NULL) ? run + 1 : 0;

            if(run == num)
            {
                id = i - num + 1;
                break;
            }
        }

        // Otherwise the freed slots at the end, and new ones after them.
        if(id == 0)
        {
            id = UInt32(_glObjects.size());
            while(id > 1 && _glObjects[id - 1] == NULL)
                --id;
        }
    }

    if(_glObjects.size() < id + num)
        _glObjects.resize(id + num, NULL);

    for(UInt32 i = id; i < id + num; ++i)
        _glObjects[i] = obj;

    obj->_firstId = id;

    // Every live window starts the ids as never seen (they may be reused).
    for(UInt32 w = 0; w < _allWindows.size(); ++w)
    {
        WindowPtr win = _allWindows[w];

        beginEditCP(win, GlObjectLastRefreshFieldMask |
                             GlObjectLastReinitializeFieldMask);

        win->growGLObjectTables(id + num);

        for(UInt32 i = id; i < id + num; ++i)
        {
            win->_mfGlObjectLastRefresh[i]      = 0;
            win->_mfGlObjectLastReinitialize[i] = 0;
            win->_lastValidate[i]               = 0;
            if(i < win->_ids.size())
                win->_ids[i] = 0;
        }

        endEditCP(win, GlObjectLastRefreshFieldMask |
                           GlObjectLastReinitializeFieldMask);
    }

    return id;
}

void Window::growGLObjectTables(UInt32 size)
{
    if(_mfGlObjectLastRefresh.size() < size)
        _mfGlObjectLastRefresh.resize(size, 0);
    if(_mfGlObjectLastReinitialize.size() < size)
        _mfGlObjectLastReinitialize.resize(size, 0);
    if(_lastValidate.size() < size)
        _lastValidate.resize(size, 0);
}

bool Window::initializedHere(const GLObject *obj, UInt32 except) const
{
    for(UInt32 i = obj->_firstId; i < obj->_firstId + obj->_num; ++i)
    {
        if(i != except && i < _mfGlObjectLastReinitialize.size() &&
           _mfGlObjectLastReinitialize[i] != 0)
            return true;
    }

    return false;
}

void Window::validateGLObject(UInt32 id)
{
    if(id == 0)
    {
        SWARNING << "Window::validateGLObject: id is 0!" << std::endl;
        return;
    }

    GLObject *obj = NULL;
    {
        std::lock_guard<std::recursive_mutex> guard(staticLock());

        if(id < _glObjects.size())
            obj = _glObjects[id];

        if(obj != NULL)
            growGLObjectTables(UInt32(_glObjects.size()));
    }

    if(obj == NULL)
    {
        SWARNING << "Window::validateGLObject: obj with id " << id
                 << " is NULL!" << std::endl;
        return;
    }

    const UInt32 counter = getGlObjectEventCounter();

    if(_mfGlObjectLastReinitialize[id] == 0)
    {
        // The count is per window, however many ids of the block are
        // initialised here.
        if(!initializedHere(obj, id))
        {
            std::lock_guard<std::mutex> rc(refCountLock());
            ++obj->_refCounter;
        }

        obj->_functor.call(this, packIdStatus(id, initialize));

        _mfGlObjectLastReinitialize[id] = 1;
        _lastValidate[id]               = counter;
    }
    else if(_mfGlObjectLastReinitialize[id] > _lastValidate[id])
    {
        obj->_functor.call(this, packIdStatus(id, reinitialize));
        _lastValidate[id] = counter;
    }
    else if(_mfGlObjectLastRefresh[id] > _lastValidate[id])
    {
        obj->_functor.call(this, packIdStatus(id, needrefresh));
        _lastValidate[id] = counter;
    }
}

void Window::validateAllGLObjects(void)
{
    activate();
    frameInit();

    for(UInt32 id = 1; id < getGLObjectsSize(); ++id)
    {
        bool present;
        {
            std::lock_guard<std::recursive_mutex> guard(staticLock());
            present = _glObjects[id] != NULL;
        }

        if(present)
            validateGLObject(id);
    }

    frameExit();
}

void Window::refreshGLObject(UInt32 id)
{
    if(id == 0)
    {
        SWARNING << "Window::refreshGLObject: id is 0!" << std::endl;
        return;
    }

    std::lock_guard<std::recursive_mutex> guard(staticLock());

    for(UInt32 w = 0; w < _allWindows.size(); ++w)
    {
        WindowPtr win = _allWindows[w];

        beginEditCP(win, GlObjectLastRefreshFieldMask |
                             GlObjectEventCounterFieldMask);

        const UInt32 next = win->getGlObjectEventCounter() + 1;

        if(win->_mfGlObjectLastRefresh.size() <= id)
            win->_mfGlObjectLastRefresh.resize(id + 1, 0);

        win->_mfGlObjectLastRefresh[id] = next;
        win->setGlObjectEventCounter(next);

        endEditCP(win, GlObjectLastRefreshFieldMask |
                           GlObjectEventCounterFieldMask);
    }
}

void Window::refreshAllGLObjects(void)
{
    std::lock_guard<std::recursive_mutex> guard(staticLock());

    for(UInt32 id = 1; id < _glObjects.size(); ++id)
        if(_glObjects[id] != NULL)
            refreshGLObject(id);
}

void Window::reinitializeGLObject(UInt32 id)
{
    if(id == 0)
    {
        SWARNING << "Window::reinitializeGLObject: id is 0!" << std::endl;
        return;
    }

    std::lock_guard<std::recursive_mutex> guard(staticLock());

    for(UInt32 w = 0; w < _allWindows.size(); ++w)
    {
        WindowPtr win = _allWindows[w];

        // Where it never was initialised, the first validation does it.
        if(id >= win->_mfGlObjectLastReinitialize.size() ||
           win->_mfGlObjectLastReinitialize[id] == 0)
            continue;

        beginEditCP(win, GlObjectLastReinitializeFieldMask |
                             GlObjectEventCounterFieldMask);

        const UInt32 next = win->getGlObjectEventCounter() + 1;

        win->_mfGlObjectLastReinitialize[id] = next;
        win->setGlObjectEventCounter(next);

        endEditCP(win, GlObjectLastReinitializeFieldMask |
                           GlObjectEventCounterFieldMask);
    }
}

void Window::reinitializeAllGLObjects(void)
{
    std::lock_guard<std::recursive_mutex> guard(staticLock());

    for(UInt32 id = 1; id < _glObjects.size(); ++id)
        if(_glObjects[id] != NULL)
            reinitializeGLObject(id);
}

void Window::destroyGLObject(UInt32 id, UInt32 num)
{
    std::lock_guard<std::recursive_mutex> guard(staticLock());

    GLObject *obj = (id != 0 && id < _glObjects.size()) ? _glObjects[id] : NULL;

    if(obj == NULL)
    {
        FWARNING(("Window::destroyGLObject: object %d is NULL!\n", id));
        return;
    }

    UInt32 count;
    {
        std::lock_guard<std::mutex> rc(refCountLock());
        count = obj->_refCounter;
    }

    if(count == 0)
    {
        // No context holds resources of it: free the ids now.
        for(UInt32 i = id; i < id + num && i < _glObjects.size(); ++i)
            if(_glObjects[i] == obj)
                _glObjects[i] = NULL;

        delete obj;
        return;
    }

    for(UInt32 w = 0; w < _allWindows.size(); ++w)
    {
        Window *win = _allWindows[w].getCPtr();

        if(win->initializedHere(obj, 0))
            win->_glObjectDestroyList.push_back(std::make_pair(id, num));
    }
}

void Window::runDestroyList(void)
{
    while(true)
    {
        std::pair<UInt32, UInt32> entry;
        GLObject                 *obj = NULL;
        {
            std::lock_guard<std::recursive_mutex> guard(staticLock());

            if(_glObjectDestroyList.empty())
                return;

            entry = _glObjectDestroyList.front();
            _glObjectDestroyList.pop_front();

            if(entry.first < _glObjects.size())
                obj = _glObjects[entry.first];
        }

        const UInt32 id  = entry.first;
        const UInt32 num = entry.second;

        if(obj == NULL)
        {
            FWARNING(("Window::frameExit: object %d is NULL!\n", id));
            continue;
        }

        obj->_functor.call(this, packIdStatus(id, destroy));

        UInt32 count;
        {
            std::lock_guard<std::mutex> rc(refCountLock());
            count = obj->_refCounter > 0 ? --obj->_refCounter : 0;
        }

        // This window is done with the block.
        for(UInt32 i = id; i < id + num; ++i)
        {
            if(i < _mfGlObjectLastReinitialize.size())
                _mfGlObjectLastReinitialize[i] = 0;
            if(i < _lastValidate.size())
                _lastValidate[i] = 0;
            if(i < _ids.size())
                _ids[i] = 0;
        }

        if(count == 0)
        {
            obj->_functor.call(this, packIdStatus(id, finaldestroy));

            std::lock_guard<std::recursive_mutex> guard(staticLock());

            for(UInt32 i = id; i < id + num && i < _glObjects.size(); ++i)
                if(_glObjects[i] == obj)
                    _glObjects[i] = NULL;

            delete obj;
        }
    }
}

void Window::unpackIdStatus(UInt32 idstatus, UInt32 &id,
                            GLObjectStatusE &status)
{
    id     = idstatus >> statusShift;
    status = GLObjectStatusE(idstatus & statusMask);
}

void Window::setGLObjectId(UInt32 osgId, UInt32 glId)
{
    if(osgId >= _ids.size())
        _ids.resize(getGLObjectsSize(), 0);

    if(osgId >= _ids.size())
    {
        SWARNING << "Window::setGLObjectId: id (" << osgId
                 << ") is not valid!" << std::endl;
        return;
    }

    _ids[osgId] = glId;
}

UInt32 Window::getGLObjectId(UInt32 osgId)
{
    return osgId < _ids.size() ? _ids[osgId] : 0;
}

UInt32 Window::getGLObjectsSize(void)
{
    std::lock_guard<std::recursive_mutex> guard(staticLock());
    return UInt32(_glObjects.size());
}

// --- extension and function registry --------------------------------------------

UInt32 Window::registerExtension(const Char8 *s)
{
    if(s == NULL)
        return 0xFFFFFFFF;

    std::lock_guard<std::recursive_mutex> guard(staticLock());

    std::vector<std::string>::iterator it =
        std::find(_registeredExtensions.begin(), _registeredExtensions.end(),
                  std::string(s));

    if(it != _registeredExtensions.end())
        return UInt32(it - _registeredExtensions.begin());

    _registeredExtensions.push_back(s);
    return UInt32(_registeredExtensions.size() - 1);
}

void Window::ignoreExtensions(const Char8 *s)
{
    std::vector<std::string> names = splitNames(s);

    std::lock_guard<std::recursive_mutex> guard(staticLock());

    for(UInt32 n = 0; n < names.size(); ++n)
    {
        const std::string &name = names[n];

        if(contains(_ignoredExtensions, name))
            continue;

        _ignoredExtensions.insert(std::lower_bound(_ignoredExtensions.begin(),
                                                   _ignoredExtensions.end(),
                                                   name),
                                  name);

        const Int32 regId = getExtensionId(name.c_str());

        if(regId >= 0 && UInt32(regId) < _commonExtensions.size())
            _commonExtensions[regId] = false;

        for(UInt32 w = 0; w < _allWindows.size(); ++w)
        {
            Window *win = _allWindows[w].getCPtr();

            std::vector<std::string>::iterator it = std::lower_bound(
                win->_extensions.begin(), win->_extensions.end(), name);

            if(it != win->_extensions.end() && *it == name)
                win->_extensions.erase(it);

            if(regId >= 0 && UInt32(regId) < win->_availExtensions.size())
                win->_availExtensions[regId] = false;
        }
    }
}

UInt32 Window::registerFunction(const Char8 *s, Int32 ext, UInt32 version)
{
    if(s == NULL)
        return 0xFFFFFFFF;

    std::lock_guard<std::recursive_mutex> guard(staticLock());

    std::vector<std::string>::iterator it =
        std::find(_registeredFunctions.begin(), _registeredFunctions.end(),
                  std::string(s));

    if(it != _registeredFunctions.end())
        return UInt32(it - _registeredFunctions.begin());

    _registeredFunctions.push_back(s);
    _registeredFunctionExts.push_back(ext);
    _registeredFunctionVersions.push_back(version);

    return UInt32(_registeredFunctions.size() - 1);
}

void Window::registerConstant(GLenum val)
{
    std::lock_guard<std::recursive_mutex> guard(staticLock());

    if(std::find(_registeredConstants.begin(), _registeredConstants.end(),
                 val) == _registeredConstants.end())
        _registeredConstants.push_back(val);
}

Int32 Window::getExtensionId(const Char8 *s)
{
    if(s == NULL)
        return -1;

    std::lock_guard<std::recursive_mutex> guard(staticLock());

    std::vector<std::string>::iterator it =
        std::find(_registeredExtensions.begin(), _registeredExtensions.end(),
                  std::string(s));

    return it != _registeredExtensions.end()
               ? Int32(it - _registeredExtensions.begin())
               : -1;
}

bool Window::hasExtension(UInt32 id)
{
    if(id >= _availExtensions.size())
    {
        FWARNING(("Extension id [%u] out-of-range!\n", id));
        return false;
    }

    return _availExtensions[id];
}

bool Window::hasExtension(const Char8 *s)
{
    if(s == NULL)
        return false;

    const std::string name(s);

    {
        std::lock_guard<std::recursive_mutex> guard(staticLock());

        if(contains(_ignoredExtensions, name))
            return false;
    }

    return contains(_extensions, name);
}

bool Window::hasCommonExtension(UInt32 id)
{
    std::lock_guard<std::recursive_mutex> guard(staticLock());

    return id < _commonExtensions.size() && _commonExtensions[id];
}

Window::GLExtensionFunction Window::getFunction(UInt32 id)
{
    if(id >= _extFunctions.size())
    {
        FINFO(("Window::getFunction: illegal id %d!\n", Int32(id)));
        return NULL;
    }

    if(_extFunctions[id] == NULL)
    {
        std::string name;
        {
            std::lock_guard<std::recursive_mutex> guard(staticLock());
            name = _registeredFunctions[id];
        }

        FINFO(("Window::getFunction: function \"%s\" is NULL!\n",
               name.c_str()));
        return NULL;
    }

    return _extFunctions[id];
}

Window::GLExtensionFunction Window::getFunctionNoCheck(UInt32 id)
{
    return _extFunctions[id];
}

Real32 Window::getConstantValue(GLenum val)
{
    std::map<GLenum, Vec2f>::const_iterator it = _availConstants.find(val);

    return it != _availConstants.end() ? it->second[0] : unknownConstant;
}

const Vec2f &Window::getConstantValuev(GLenum val)
{
    static const Vec2f unknown(unknownConstant, unknownConstant);

    std::map<GLenum, Vec2f>::const_iterator it = _availConstants.find(val);

    return it != _availConstants.end() ? it->second : unknown;
}

void Window::dumpExtensions(void)
{
    std::printf("GL extensions of window %u:\n", _windowId);

    for(UInt32 i = 0; i < _extensions.size(); ++i)
        std::printf("%s\n", _extensions[i].c_str());
}

Window::GLExtensionFunction Window::getFunctionByName(const Char8 *s)
{
    if(s == NULL)
        return NULL;

    // EGL resolves every GL entry point of the vendor library behind the
    // current context (with GLVND also for GLX contexts).
    GLExtensionFunction func =
        reinterpret_cast<GLExtensionFunction>(eglGetProcAddress(s));

    if(func == NULL)
        func = reinterpret_cast<GLExtensionFunction>(dlsym(RTLD_DEFAULT, s));

    if(func == NULL)
    {
        std::string lib;
        {
            std::lock_guard<std::recursive_mutex> guard(staticLock());
            lib = _glLibraryName;
        }

        if(!lib.empty())
        {
            void *handle = dlopen(lib.c_str(), RTLD_LAZY | RTLD_GLOBAL);
            if(handle != NULL)
                func = reinterpret_cast<GLExtensionFunction>(dlsym(handle, s));
        }
    }

    if(func == NULL)
    {
        FWARNING(("Window::getFunctionByName: Couldn't get function '%s' for "
                  "Window %p.\n",
                  s, static_cast<void *>(this)));
    }

    return func;
}

void Window::setGLLibraryName(const Char8 *s)
{
    std::lock_guard<std::recursive_mutex> guard(staticLock());
    _glLibraryName = (s != NULL) ? s : "";
}

UInt32 Window::getGLVersion(void)
{
    return _glVersion;
}

const std::vector<std::string> &Window::getRegisteredExtensions(void)
{
    return _registeredExtensions;
}

const std::vector<std::string> &Window::getRegisteredFunctions(void)
{
    return _registeredFunctions;
}

const std::vector<std::string> &Window::getIgnoredExtensions(void)
{
    return _ignoredExtensions;
}

const std::vector<std::string> &Window::getExtensions(void)
{
    return _extensions;
}

// --- ports -----------------------------------------------------------------------

namespace
{

void setPortParent(const ViewportPtr &port, const WindowPtr &parent)
{
    if(port == NullFC)
        return;

    beginEditCP(port, Viewport::ParentFieldMask);
    port->setParent(parent);
    endEditCP(port, Viewport::ParentFieldMask);
}

} // namespace

void Window::addPort(const ViewportPtr &portP)
{
    if(portP == NullFC)
        return;

    _mfPort.push_back(portP);
    setPortParent(portP, getPtr());
}

void Window::insertPort(UInt32 portIndex, const ViewportPtr &portP)
{
    if(portP == NullFC)
        return;

    if(portIndex > _mfPort.size())
        portIndex = _mfPort.size();

    _mfPort.insert(_mfPort.begin() + portIndex, portP);
    setPortParent(portP, getPtr());
}

void Window::replacePort(UInt32 portIndex, const ViewportPtr &portP)
{
    if(portIndex >= _mfPort.size())
        return;

    setPortParent(_mfPort[portIndex], NullFC);
    _mfPort[portIndex] = portP;
    setPortParent(portP, getPtr());
}

void Window::replacePortBy(const ViewportPtr &portP,
                           const ViewportPtr &newportP)
{
    MFViewportPtr::iterator it = _mfPort.find(portP);

    if(it != _mfPort.end())
        replacePort(UInt32(it - _mfPort.begin()), newportP);
}

void Window::subPort(const ViewportPtr &portP)
{
    MFViewportPtr::iterator it = _mfPort.find(portP);

    if(it == _mfPort.end())
        return;

    setPortParent(portP, NullFC);
    _mfPort.erase(it);
}

void Window::subPortByObj(const ViewportPtr &portP)
{
    subPort(portP);
}

void Window::subPort(UInt32 portIndex)
{
    if(portIndex >= _mfPort.size())
        return;

    setPortParent(_mfPort[portIndex], NullFC);
    _mfPort.erase(_mfPort.begin() + portIndex);
}

void Window::clearPorts(void)
{
    MFViewportPtr ports;
    ports.swap(_mfPort);

    for(UInt32 i = 0; i < ports.size(); ++i)
    {
        setPortParent(ports[i], NullFC);
        subRefCP(ports[i]);
    }
}

// --- size --------------------------------------------------------------------------

void Window::setSize(UInt16 width, UInt16 height)
{
    _sfWidth.setValue(width);
    _sfHeight.setValue(height);
}

bool Window::isResizePending(void)
{
    return getResizePending();
}

void Window::resize(int width, int height)
{
    WindowPtr self = getPtr();

    beginEditCP(self, WidthFieldMask | HeightFieldMask | ResizePendingFieldMask);
    setWidth(UInt16(width));
    setHeight(UInt16(height));
    setResizePending(true);
    endEditCP(self, WidthFieldMask | HeightFieldMask | ResizePendingFieldMask);
}

void Window::resizeGL(void)
{
    if(!isResizePending())
        return;

    glViewport(0, 0, getWidth(), getHeight());

    WindowPtr self = getPtr();

    beginEditCP(self, ResizePendingFieldMask);
    setResizePending(false);
    endEditCP(self, ResizePendingFieldMask);
}

// --- frame ---------------------------------------------------------------------------

void Window::readGLVersionAndExtensions(void)
{
    const char *version = reinterpret_cast<const char *>(glGetString(GL_VERSION));

    int major = 0, minor = 0;

    if(version == NULL || std::sscanf(version, "%d.%d", &major, &minor) != 2)
    {
        // Reading nothing now must not spoil the tables for good: the next
        // frameInit with a current context fills them.
        FFATAL(("Window::frameInit: Couldn't detect OpenGL version assuming "
                "version 1.1!\n"));
        return;
    }

    _glVersion   = (UInt32(major) << 8) + UInt32(minor);
    _versionRead = true;

    std::vector<std::string> names;

    const char *ext = reinterpret_cast<const char *>(glGetString(GL_EXTENSIONS));

    if(ext != NULL)
    {
        names = splitNames(ext);
    }
    else
    {
        // A core-profile context only lists them one by one.
        typedef const GLubyte *(*GetStringiF)(GLenum, GLuint);

        GetStringiF getStringi =
            reinterpret_cast<GetStringiF>(getFunctionByName("glGetStringi"));
        GLint count = 0;

        glGetIntegerv(GL_NUM_EXTENSIONS, &count);

        for(GLint i = 0; getStringi != NULL && i < count; ++i)
        {
            const char *e =
                reinterpret_cast<const char *>(getStringi(GL_EXTENSIONS, i));
            if(e != NULL)
                names.push_back(e);
        }

        while(glGetError() != GL_NO_ERROR)
            ;
    }

    std::lock_guard<std::recursive_mutex> guard(staticLock());

    _extensions.clear();

    for(UInt32 i = 0; i < names.size(); ++i)
        if(!contains(_ignoredExtensions, names[i]))
            _extensions.push_back(names[i]);

    std::sort(_extensions.begin(), _extensions.end());
    _extensions.erase(std::unique(_extensions.begin(), _extensions.end()),
                      _extensions.end());
}

void Window::frameInit(void)
{
    static std::once_flag ignoreFromEnvironment;

    std::call_once(ignoreFromEnvironment, [] {
        const char *env = std::getenv("OSG_IGNORE_EXTENSIONS");
        if(env != NULL)
            ignoreExtensions(env);
    });

    if(!_versionRead)
    {
        readGLVersionAndExtensions();

        if(!_versionRead)
            return;
    }

    std::vector<std::pair<UInt32, std::string> > toLoad;
    std::vector<GLenum>                          constants;

    {
        std::lock_guard<std::recursive_mutex> guard(staticLock());

        for(UInt32 i = UInt32(_availExtensions.size());
            i < _registeredExtensions.size(); ++i)
        {
            const std::string &name = _registeredExtensions[i];

            const bool avail = contains(_extensions, name) &&
                               !contains(_ignoredExtensions, name);

            _availExtensions.push_back(avail);

            if(i >= _commonExtensions.size())
                _commonExtensions.push_back(avail);
            else
                _commonExtensions[i] = _commonExtensions[i] && avail;
        }

        for(UInt32 i = UInt32(_extFunctions.size());
            i < _registeredFunctions.size(); ++i)
        {
            const Int32  ext     = _registeredFunctionExts[i];
            const UInt32 version = _registeredFunctionVersions[i];

            const bool load =
                ext == -1 ||
                (ext >= 0 && UInt32(ext) < _availExtensions.size() &&
                 _availExtensions[ext]) ||
                _glVersion >= version;

            _extFunctions.push_back(NULL);

            if(load)
                toLoad.push_back(std::make_pair(i, _registeredFunctions[i]));
        }

        for(UInt32 i = _numConstantsRead; i < _registeredConstants.size(); ++i)
            constants.push_back(_registeredConstants[i]);

        _numConstantsRead = UInt32(_registeredConstants.size());
    }

    for(UInt32 i = 0; i < toLoad.size(); ++i)
        _extFunctions[toLoad[i].first] =
            getFunctionByName(toLoad[i].second.c_str());

    if(!constants.empty())
    {
        for(UInt32 i = 0; i < constants.size(); ++i)
        {
            GLfloat value[2] = {unknownConstant, unknownConstant};
            glGetFloatv(constants[i], value);
            _availConstants[constants[i]] = Vec2f(value[0], value[1]);
        }

        // Constants this context does not know leave an error behind.
        while(glGetError() != GL_NO_ERROR)
            ;
    }
}

void Window::frameExit(void)
{
    runDestroyList();

    // A bounded drain: without a context some drivers report an error on
    // every call.
    for(UInt32 i = 0; i < 32; ++i)
    {
        const GLenum err = glGetError();

        if(err == GL_NO_ERROR)
            break;

        FWARNING(("Window::frameExit: Caught stray OpenGL error %s (%#x).\n",
                  reinterpret_cast<const char *>(gluErrorString(err)),
                  UInt32(err)));
    }
}

void Window::draw(DrawAction *action)
{
    activate();
    frameInit();
    resizeGL();

    drawAllViewports(action);

    swap();
    frameExit();
}

void Window::drawAllViewports(DrawAction *action)
{
    if(action == NULL)
    {
        SWARNING << "Window::drawAllViewports: no action!" << std::endl;
        return;
    }

    action->setWindow(this);

    for(UInt32 i = 0; i < _mfPort.size(); ++i)
    {
        if(_mfPort[i] != NullFC)
            _mfPort[i]->draw(action);
    }
}

void Window::render(RenderActionBase *action)
{
    activate();
    frameInit();

    renderAllViewports(action);

    swap();
    frameExit();
}

void Window::renderAllViewports(RenderActionBase *action)
{
    if(action == NULL)
    {
        SWARNING << "Window::renderAllViewports: no action!" << std::endl;
        return;
    }

    action->setWindow(this);

    for(UInt32 i = 0; i < _mfPort.size(); ++i)
    {
        if(_mfPort[i] != NullFC)
            _mfPort[i]->render(action);
    }
}

void Window::setupGL(void)
{
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);

    glDepthFunc(GL_LEQUAL);
    glEnable(GL_DEPTH_TEST);

    glEnable(GL_NORMALIZE);

    const GLfloat black[4] = {0.f, 0.f, 0.f, 1.f};
    glLightfv(GL_LIGHT0, GL_DIFFUSE, black);
    glLightfv(GL_LIGHT0, GL_SPECULAR, black);

    frameInit();
}

OSG_END_NAMESPACE
