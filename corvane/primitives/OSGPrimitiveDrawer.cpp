#include <OpenSG/OSGPrimitiveDrawer.h>
#include <OpenSG/PrimitivesRegistration.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGRenderAction.h>

OSG_BEGIN_NAMESPACE

PrimitiveDrawer::PrimitiveDrawer(void)
    : Inherited(), _library(), _baseName(), _context(NULL), _drawPrim(NULL), _getBBox(NULL),
      _setParam(NULL)
{
}

PrimitiveDrawer::PrimitiveDrawer(const PrimitiveDrawer &source)
    : Inherited(source), _library(), _baseName(source._baseName), _context(source._context),
      _drawPrim(source._drawPrim), _getBBox(source._getBBox), _setParam(source._setParam)
{
}

PrimitiveDrawer::~PrimitiveDrawer(void)
{
    shutdown();
}

void PrimitiveDrawer::initMethod(void)
{
    registerPrimitivesHandlers<PrimitiveDrawerPtr>(getClassType(), &PrimitiveDrawer::intersect);
}

// The material is given back once, from the aspect-0 copy; the library is
// closed by each copy that opened one.
void PrimitiveDrawer::onDestroy(void)
{
    Inherited::onDestroy();

    MaterialPtr material = _sfMaterial.getValue();
    _sfMaterial.setValue(NullFC);
    subRefCP(material);
}

template <class FunctionT>
FunctionT PrimitiveDrawer::usable(FunctionT function) const
{
    return _library.isOpen() ? function : NULL;
}

// --- the library -------------------------------------------------------------------

void PrimitiveDrawer::shutdown(void)
{
    if(!_library.isOpen())
        return;

    ShutdownF bye = reinterpret_cast<ShutdownF>(
        _library.getSymbol((_baseName + "_shutdown").c_str()));
    if(bye != NULL)
        bye(_context);

    if(!_library.close())
        SWARNING << "Could not close shared library " << _library.getName() << std::endl;
}

void PrimitiveDrawer::loadLibrary(void)
{
    shutdown();

    // "file#base": only the last "#" separates
    const std::string      name  = getLibName();
    const std::string::size_type hash = name.rfind('#');
    std::string            file  = name;
    if(hash != std::string::npos)
    {
        file      = name.substr(0, hash);
        _baseName = name.substr(hash + 1);
    }
    else
    {
        _baseName = name;
    }

    if(!_library.open(file.c_str()))
        _library.open(("lib" + file + ".so").c_str());

    if(!_library.isOpen())
    {
        SWARNING << "Could not open shared library " << name << std::endl;
        return;
    }

    InitializeF init = reinterpret_cast<InitializeF>(
        _library.getSymbol((_baseName + "_initialize").c_str()));
    _context = init != NULL ? init() : NULL;

    _drawPrim = reinterpret_cast<DrawPrimF>(
        _library.getSymbol((_baseName + "_drawPrim").c_str()));
    _getBBox = reinterpret_cast<GetBBoxF>(
        _library.getSymbol((_baseName + "_getBBox").c_str()));
    _setParam = reinterpret_cast<SetParamF>(
        _library.getSymbol((_baseName + "_setParam").c_str()));

    if(_drawPrim == NULL || _getBBox == NULL || _setParam == NULL)
        SWARNING << "Could not load correct symbols from library " << _library.getName()
                 << std::endl;

    invalidateVolume();
}

void PrimitiveDrawer::passParameters(void)
{
    SetParamF setParam = usable(_setParam);
    if(setParam == NULL)
    {
        SWARNING << "Missing function pointer: setParam";
        return;
    }

    const MFString &params = getParamDic();
    for(UInt32 i = 0; i + 1 < params.size(); i += 2)
    {
        if(setParam(_context, params[i].c_str(), params[i + 1].c_str()) == 0)
            SWARNING << "Could not set parameter " << params[i] << " to " << params[i + 1]
                     << std::endl;
    }
    if(params.size() % 2 != 0)
        SWARNING << "Parameter " << params.back() << " has no value" << std::endl;
}

void PrimitiveDrawer::changed(BitVector whichField, UInt32 origin)
{
    if(whichField & LibNameFieldMask)
        loadLibrary();

    if(whichField & ParamDicFieldMask)
        passParameters();

    Inherited::changed(whichField, origin);
}

// --- drawing -----------------------------------------------------------------------

Action::ResultE PrimitiveDrawer::drawPrimitives(DrawActionBase *action)
{
    if(DrawPrimF draw = usable(_drawPrim))
        draw(_context, action);
    else
        SWARNING << "Missing function pointer: drawPrim" << std::endl;
    return Action::Continue;
}

void PrimitiveDrawer::adjustVolume(Volume &volume)
{
    Real32   min[3] = {0.f, 0.f, 0.f}, max[3] = {0.f, 0.f, 0.f};
    GetBBoxF box    = usable(_getBBox);
    if(box == NULL)
    {
        SWARNING << "Missing function pointer: getBBox" << std::endl;
        return;
    }

    box(_context, min, max);
    volume.extendBy(Pnt3f(min[0], min[1], min[2]));
    volume.extendBy(Pnt3f(max[0], max[1], max[2]));
}

Action::ResultE PrimitiveDrawer::intersect(Action *)
{
    return Action::Continue;
}

void PrimitiveDrawer::dump(UInt32, const BitVector) const
{
    SLOG << "Dump PrimitiveDrawer NI" << std::endl;
}

OSG_END_NAMESPACE
