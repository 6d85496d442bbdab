#include "PreCentralDiffNormal.h"

PreCentralDiffNormal::PreCentralDiffNormal(void)
{
}

PreCentralDiffNormal::PreCentralDiffNormal(osg::TextureChunkPtr)
{
}

std::string PreCentralDiffNormal::getFragmentShaderString(void)
{
    return OnlineCentralDiffNormal().getFragmentShaderString();
}

void PreCentralDiffNormal::setMaterialParameter(osg::ChunkMaterialPtr &, osg::SHLChunkPtr &, int &,
                                                VolumeData *)
{
}
