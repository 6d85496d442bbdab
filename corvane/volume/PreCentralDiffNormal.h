/// Precomputed normals (placeholder until the real one lands).
#ifndef _PRECENTRALDIFFNORMAL_H_
#define _PRECENTRALDIFFNORMAL_H_

#include "NormalVolume.h"

#include <OpenSG/OSGTextureChunk.h>

class PreCentralDiffNormal : public NormalVolume
{
  public:
    PreCentralDiffNormal(void);
    explicit PreCentralDiffNormal(osg::TextureChunkPtr normals);
    std::string getFragmentShaderString(void) override;
    void        setMaterialParameter(osg::ChunkMaterialPtr &material,
                                     osg::SHLChunkPtr      &shader,
                                     int                   &textureUnit,
                                     VolumeData            *volumeData) override;
};

#endif
