#include <OpenSG/OSGMaterial.h>

OSG_BEGIN_NAMESPACE

const MaterialPtr NullMaterial;

Material::Material(void) : Inherited(), _pState()
{
}

Material::Material(const Material &source) : Inherited(source), _pState()
{
}

Material::~Material(void)
{
}

void Material::initMethod(void)
{
}

void Material::onDestroy(void)
{
    if(_pState != NullFC)
    {
        StatePtr state = _pState;
        _pState        = NullFC;
        subRefCP(state);
    }
    Inherited::onDestroy();
}

StatePtr Material::getState(UInt32)
{
    return _pState;
}

bool Material::isMultiPass(void) const
{
    return false;
}

UInt32 Material::getNPasses(void) const
{
    return 1;
}

Int32 Material::getRealSortKey(void) const
{
    return getSortKey();
}

bool Material::operator<(const Material &other) const
{
    return this < &other;
}

bool Material::operator==(const Material &other) const
{
    return _pState == other._pState;
}

bool Material::operator!=(const Material &other) const
{
    return !(*this == other);
}

void Material::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
    rebuildState();
}

void Material::dump(UInt32, const BitVector) const
{
    SLOG << "Material::dump called: NIY!" << std::endl;
}

OSG_END_NAMESPACE
