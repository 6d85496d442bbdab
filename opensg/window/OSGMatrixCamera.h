/// A camera given by its matrices: ProjectionMatrix and ModelviewMatrix are
/// used as they are, whatever the viewport's size; the beacon is ignored.
#ifndef _OSGMATRIXCAMERA_H_
#define _OSGMATRIXCAMERA_H_

#include <OpenSG/OSGMatrixCameraBase.h>

OSG_BEGIN_NAMESPACE

class MatrixCamera : public MatrixCameraBase
{
  private:
    typedef MatrixCameraBase Inherited;

  public:
    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

    virtual void draw(DrawAction *action, const Viewport &port);

    virtual void getProjection(Matrix &result, UInt32 width, UInt32 height);
    virtual void getViewing(Matrix &result, UInt32 width, UInt32 height);

  protected:
    MatrixCamera(void);
    MatrixCamera(const MatrixCamera &source);
    virtual ~MatrixCamera(void);

  private:
    friend class FieldContainer;
    friend class MatrixCameraBase;

    static void initMethod(void);

    void operator=(const MatrixCamera &source);
};

typedef MatrixCamera *MatrixCameraP;

OSG_END_NAMESPACE

#endif
