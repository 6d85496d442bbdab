/// Proxy geometry of a volume (placeholder: the unit box for both kinds).
#ifndef _BVGEOMETRY_H_
#define _BVGEOMETRY_H_

#include <OpenSG/OSGNode.h>

class VolumeData;

class BVGeometry
{
  public:
    BVGeometry(void);
    virtual ~BVGeometry(void);
    virtual bool createBoundingGeometry(VolumeData *volumeData) = 0;
    virtual bool update(VolumeData *volumeData)                 = 0;
    virtual void init(VolumeData *volumeData);
    osg::NodePtr getBoundingGeometry(void) const { return _boundingGeometry; }

  protected:
    osg::NodePtr _boundingGeometry;
};

class BoxGeometry : public BVGeometry
{
  public:
    bool createBoundingGeometry(VolumeData *volumeData) override;
    bool update(VolumeData *volumeData) override;
    osg::NodePtr getBox(void) const { return _boundingGeometry; }
};

class BoundaryGeometry : public BoxGeometry
{
};

#endif
