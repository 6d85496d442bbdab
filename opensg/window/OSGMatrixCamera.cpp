#include <OpenSG/OSGMatrixCamera.h>

OSG_BEGIN_NAMESPACE

MatrixCamera::MatrixCamera(void) : Inherited()
{
}

MatrixCamera::MatrixCamera(const MatrixCamera &source) : Inherited(source)
{
}

MatrixCamera::~MatrixCamera(void)
{
}

void MatrixCamera::initMethod(void)
{
}

void MatrixCamera::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void MatrixCamera::dump(UInt32, const BitVector) const
{
    SLOG << "Dump MatrixCamera NI" << std::endl;
}

void MatrixCamera::draw(DrawAction *, const Viewport &)
{
}

void MatrixCamera::getProjection(Matrix &result, UInt32, UInt32)
{
    result = getProjectionMatrix();
}

void MatrixCamera::getViewing(Matrix &result, UInt32, UInt32)
{
    result = getModelviewMatrix();
}

OSG_END_NAMESPACE
