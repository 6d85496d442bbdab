#ifndef _OSGPRIMITIVEDRAWER_H_
#define _OSGPRIMITIVEDRAWER_H_

#include <OpenSG/OSGPrimitiveDrawerBase.h>
#include <OpenSG/OSGAction.h>
#include <OpenSG/OSGSharedLibrary.h>

#include <string>

OSG_BEGIN_NAMESPACE

class DrawActionBase;

/// A drawable whose drawing comes from a plug-in shared library named at
/// run time.
///
/// libName is "file" or "file#base". The core opens file (or, failing that,
/// "lib" + file + ".so") through SharedLibrary and looks up five plain C
/// functions named base + a suffix (base is file when there is no "#"):
///
///     void *<base>_initialize(void);                                optional
///     void  <base>_drawPrim(void *context, osg::DrawActionBase *action);
///     void  <base>_getBBox(void *context, osg::Real32 min[3], osg::Real32 max[3]);
///     int   <base>_setParam(void *context, const char *name, const char *value);
///     void  <base>_shutdown(void *context);                         optional
///
/// The context that _initialize returns is the first argument of every
/// other call. Each pair of paramDic (name, value, name, value, ...) goes
/// to _setParam; a zero result is reported.
class PrimitiveDrawer : public PrimitiveDrawerBase
{
  private:
    typedef PrimitiveDrawerBase Inherited;

  public:
    /// Looked up as libName + "_initialize", _drawPrim, _getBBox, _setParam
    /// and _shutdown; context is what _initialize returned.
    /// @{
    typedef void *(*InitializeF)(void);
    typedef void (*DrawPrimF)(void *context, DrawActionBase *action);
    typedef void (*GetBBoxF)(void *context, Real32 *min, Real32 *max);
    typedef int (*SetParamF)(void *context, const char *name, const char *value);
    typedef void (*ShutdownF)(void *context);
    /// @}

    /// Calls the plug-in's _drawPrim; warns when it has none.
    virtual Action::ResultE drawPrimitives(DrawActionBase *action);

    /// Rays pass through the core.
    Action::ResultE intersect(Action *action);

    /// Calls the plug-in's _shutdown, if it has one, and closes the library.
    void shutdown(void);

    /// What _initialize returned; NULL without it.
    void *getContext(void) const { return _context; }
    /// The prefix of the symbol names.
    const std::string &getBaseName(void) const { return _baseName; }
    /// Whether a library is open now.
    bool isLibraryOpen(void) const { return _library.isOpen(); }

    /// A new libName loads that plug-in; a new paramDic is passed to it.
    virtual void changed(BitVector whichField, UInt32 origin);
    /// Logs "Dump <class> NI": the fields are not listed.
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

  protected:
    PrimitiveDrawer(void);
    /// Copies the fields; the factory clones the prototype through it.
    PrimitiveDrawer(const PrimitiveDrawer &source);
    virtual ~PrimitiveDrawer(void);

    /// Gives back the material.
    virtual void onDestroy(void);

    /// The box that the plug-in's _getBBox reports.
    virtual void adjustVolume(Volume &volume);

  private:
    friend class FieldContainer;
    friend class PrimitiveDrawerBase;

    static void initMethod(void);

    void loadLibrary(void);
    void passParameters(void);
    /// The entry point, or NULL where the library that supplied it is
    /// closed: a failed load closes the old library but keeps its pointers.
    template <class FunctionT>
    FunctionT usable(FunctionT function) const;

    SharedLibrary _library;
    std::string   _baseName;
    void         *_context;
    DrawPrimF     _drawPrim;
    GetBBoxF      _getBBox;
    SetParamF     _setParam;

    void operator=(const PrimitiveDrawer &source);
};

typedef PrimitiveDrawer *PrimitiveDrawerP;

OSG_END_NAMESPACE

#endif
