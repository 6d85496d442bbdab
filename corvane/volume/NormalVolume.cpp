#include "NormalVolume.h"

void NormalVolume::init(VolumeData *)
{
}

std::string OnlineCentralDiffNormal::getFragmentShaderString(void)
{
    return std::string();
}

void OnlineCentralDiffNormal::setMaterialParameter(osg::ChunkMaterialPtr &, osg::SHLChunkPtr &,
                                                   int &, VolumeData *)
{
}

std::string OnlineSobelNormal::getFragmentShaderString(void)
{
    return std::string();
}

void OnlineSobelNormal::setMaterialParameter(osg::ChunkMaterialPtr &, osg::SHLChunkPtr &, int &,
                                             VolumeData *)
{
}
