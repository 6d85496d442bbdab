#include <OpenSG/OSGComponentTransform.h>
#include <OpenSG/OSGLog.h>

OSG_BEGIN_NAMESPACE

ComponentTransform::ComponentTransform(void) : Inherited()
{
}

ComponentTransform::ComponentTransform(const ComponentTransform &source) : Inherited(source)
{
}

ComponentTransform::~ComponentTransform(void)
{
}

void ComponentTransform::initMethod(void)
{
    // the actions find functors by exact type: give this type the
    // Transform's own
    registerFunctors(getClassType());
}

void ComponentTransform::changed(BitVector whichField, UInt32 origin)
{
    const BitVector components = CenterFieldMask | RotationFieldMask | ScaleFieldMask |
                                 ScaleOrientationFieldMask | TranslationFieldMask;

    if(whichField & components)
    {
        getMatrix().setTransform(getTranslation(), getRotation(), getScale(),
                                 getScaleOrientation(), getCenter());
        invalidateVolume();
    }
    else if(whichField & MatrixFieldMask)
    {
        getMatrix().getTransform(getTranslation(), getRotation(), getScale(),
                                 getScaleOrientation(), getCenter());
    }

    Inherited::changed(whichField, origin);
}

void ComponentTransform::dump(UInt32, const BitVector) const
{
    SLOG << "Dump ComponentTransform NI" << std::endl;
}

OSG_END_NAMESPACE
