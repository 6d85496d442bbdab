#include <OpenSG/OSGBlendChunk.h>
#include <OpenSG/OSGWindow.h>
#include <OpenSG/OSGDrawActionBase.h>
#include <OpenSG/OSGGL.h>

OSG_BEGIN_NAMESPACE

StateChunkClass BlendChunk::_class("Blend", 1);

namespace
{
UInt32 extBlendColor          = Window::invalidExtensionID;
UInt32 extImaging             = Window::invalidExtensionID;
UInt32 extBlendSubtract       = Window::invalidExtensionID;
UInt32 extBlendMinMax         = Window::invalidExtensionID;
UInt32 extBlendLogicOp        = Window::invalidExtensionID;
UInt32 extBlendFuncSeparate   = Window::invalidExtensionID;
UInt32 funcBlendColor         = Window::invalidFunctionID;
UInt32 funcBlendEquation      = Window::invalidFunctionID;
UInt32 funcBlendEquationExt   = Window::invalidFunctionID;
UInt32 funcBlendFuncSeparate  = Window::invalidFunctionID;

inline bool isConstantFactor(GLenum factor)
{
    return factor >= GL_CONSTANT_COLOR && factor <= GL_ONE_MINUS_CONSTANT_ALPHA;
}

inline Window *windowOf(DrawActionBase *action)
{
    return action != NULL ? action->getWindow() : NULL;
}

void applyBlendFunc(const BlendChunk *chunk, Window *win)
{
    GLenum src  = chunk->getSrcFactor();
    GLenum dest = chunk->getDestFactor();
    GLenum asrc = chunk->getAlphaSrcFactor();
    GLenum adst = chunk->getAlphaDestFactor();

    if((asrc == OSG_GL_UNUSED) != (adst == OSG_GL_UNUSED))
    {
        FWARNING(("BlendChunk::activate: only one of alpha src and alpha dest is set. "
                  "Ignored.\n"));
        glBlendFunc(src, dest);
    }
    else if(asrc != OSG_GL_UNUSED && win != NULL && (win->hasExtension(extBlendFuncSeparate) || win->getGLVersion() >= 0x0104))
    {
        PFNGLBLENDFUNCSEPARATEPROC f =
            reinterpret_cast<PFNGLBLENDFUNCSEPARATEPROC>(win->getFunction(funcBlendFuncSeparate));
        if(f != NULL)
            f(src, dest, asrc, adst);
        else
            glBlendFunc(src, dest);
    }
    else
    {
        glBlendFunc(src, dest);
    }

    if(win != NULL && (win->hasExtension(extBlendColor) || win->getGLVersion() >= 0x0104) &&
       (isConstantFactor(src) || isConstantFactor(dest) ||
        (asrc != OSG_GL_UNUSED && isConstantFactor(asrc)) ||
        (adst != OSG_GL_UNUSED && isConstantFactor(adst))))
    {
        PFNGLBLENDCOLORPROC f =
            reinterpret_cast<PFNGLBLENDCOLORPROC>(win->getFunction(funcBlendColor));
        const Color4f &c = chunk->getColor();
        if(f != NULL)
            f(c[0], c[1], c[2], c[3]);
    }
}

void applyEquation(Window *win, GLenum equation)
{
    if(win == NULL)
        return;

    if(win->hasExtension(extImaging) || win->getGLVersion() >= 0x0104)
    {
        PFNGLBLENDEQUATIONPROC f =
            reinterpret_cast<PFNGLBLENDEQUATIONPROC>(win->getFunction(funcBlendEquation));
        if(f != NULL)
            f(equation);
    }
    else if(win->hasExtension(extBlendSubtract) || win->hasExtension(extBlendMinMax) ||
            win->hasExtension(extBlendLogicOp))
    {
        PFNGLBLENDEQUATIONEXTPROC f =
            reinterpret_cast<PFNGLBLENDEQUATIONEXTPROC>(win->getFunction(funcBlendEquationExt));
        if(f != NULL)
            f(equation);
    }
}
} // namespace

BlendChunk::BlendChunk(void) : Inherited()
{
}

BlendChunk::BlendChunk(const BlendChunk &source) : Inherited(source)
{
}

BlendChunk::~BlendChunk(void)
{
}

void BlendChunk::initMethod(void)
{
    extBlendColor        = Window::registerExtension("GL_EXT_blend_color");
    extImaging           = Window::registerExtension("GL_ARB_imaging");
    extBlendSubtract     = Window::registerExtension("GL_EXT_blend_subtract");
    extBlendMinMax       = Window::registerExtension("GL_EXT_blend_minmax");
    extBlendLogicOp      = Window::registerExtension("GL_EXT_blend_logic_op");
    extBlendFuncSeparate = Window::registerExtension("GL_EXT_blend_func_separate");

    // the core names of OpenGL 1.4, loaded with the extension or the version
    funcBlendColor = Window::registerFunction("glBlendColor", Int32(extBlendColor), 0x0104);
    funcBlendEquation = Window::registerFunction("glBlendEquation", Int32(extImaging), 0x0104);
    funcBlendEquationExt =
        Window::registerFunction("glBlendEquationEXT", Int32(extBlendMinMax), 0xFFFF);
    funcBlendFuncSeparate =
        Window::registerFunction("glBlendFuncSeparate", Int32(extBlendFuncSeparate), 0x0104);
}

const StateChunkClass *BlendChunk::getClass(void) const
{
    return &_class;
}

bool BlendChunk::isBlending(void) const
{
    return getSrcFactor() != GL_ONE || getDestFactor() != GL_ZERO ||
           (getAlphaSrcFactor() != OSG_GL_UNUSED && getAlphaSrcFactor() != GL_ONE) ||
           (getAlphaDestFactor() != OSG_GL_UNUSED && getAlphaDestFactor() != GL_ZERO);
}

void BlendChunk::activate(DrawActionBase *action, UInt32)
{
    Window *win = windowOf(action);

    if(isBlending())
    {
        applyBlendFunc(this, win);
        glEnable(GL_BLEND);
    }

    if(getEquation() != GL_NONE)
        applyEquation(win, getEquation());

    if(getAlphaFunc() != GL_NONE)
    {
        glAlphaFunc(getAlphaFunc(), getAlphaValue());
        glEnable(GL_ALPHA_TEST);
    }
}

void BlendChunk::changeFrom(DrawActionBase *action, StateChunk *old_chunk, UInt32 index)
{
    if(old_chunk == this)
        return;

    BlendChunk *old = dynamic_cast<BlendChunk *>(old_chunk);
    if(old == NULL)
    {
        old_chunk->deactivate(action, index);
        activate(action, index);
        return;
    }

    Window *win = windowOf(action);

    if(isBlending())
    {
        if(getSrcFactor() != old->getSrcFactor() || getDestFactor() != old->getDestFactor() ||
           getAlphaSrcFactor() != old->getAlphaSrcFactor() ||
           getAlphaDestFactor() != old->getAlphaDestFactor() || getColor() != old->getColor())
            applyBlendFunc(this, win);
        if(!old->isBlending())
            glEnable(GL_BLEND);
    }
    else if(old->isBlending())
    {
        glDisable(GL_BLEND);
    }

    if(getEquation() != old->getEquation())
        applyEquation(win, getEquation() != GL_NONE ? getEquation() : GLenum(GL_FUNC_ADD));

    if(getAlphaFunc() != GL_NONE)
    {
        if(getAlphaFunc() != old->getAlphaFunc() || getAlphaValue() != old->getAlphaValue())
            glAlphaFunc(getAlphaFunc(), getAlphaValue());
        if(old->getAlphaFunc() == GL_NONE)
            glEnable(GL_ALPHA_TEST);
    }
    else if(old->getAlphaFunc() != GL_NONE)
    {
        glDisable(GL_ALPHA_TEST);
    }
}

void BlendChunk::deactivate(DrawActionBase *action, UInt32)
{
    if(isBlending())
        glDisable(GL_BLEND);

    if(getEquation() != GL_NONE)
        applyEquation(windowOf(action), GL_FUNC_ADD);

    if(getAlphaFunc() != GL_NONE)
        glDisable(GL_ALPHA_TEST);
}

bool BlendChunk::isTransparent(void) const
{
    return getDestFactor() != GL_ZERO;
}

Real32 BlendChunk::switchCost(StateChunk *)
{
    return 0;
}

bool BlendChunk::operator<(const StateChunk &other) const
{
    return this < &other;
}

bool BlendChunk::operator==(const StateChunk &other) const
{
    const BlendChunk *tother = dynamic_cast<const BlendChunk *>(&other);
    if(tother == NULL)
        return false;
    if(tother == this)
        return true;
    return getSrcFactor() == tother->getSrcFactor() && getDestFactor() == tother->getDestFactor() &&
           getEquation() == tother->getEquation() && getColor() == tother->getColor() &&
           getAlphaFunc() == tother->getAlphaFunc() && getAlphaValue() == tother->getAlphaValue();
}

bool BlendChunk::operator!=(const StateChunk &other) const
{
    return !(*this == other);
}

void BlendChunk::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void BlendChunk::dump(UInt32, const BitVector) const
{
    SLOG << "Dump BlendChunk NI" << std::endl;
}

OSG_END_NAMESPACE
