#include <OpenSG/LensFilterSupport.h>

#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGDisplayFilterForeground.h>
#include <OpenSG/OSGState.h>

OSG_BEGIN_NAMESPACE

void attachLensShader(DisplayFilterForeground *fg, SHLChunkPtr &held, const char *vertex,
                      const char *fragment)
{
    DisplayFilterForeground::DisplayFilterGroup *group =
        fg->findReadbackGroup("ColorDisplayFilter");

    releaseLensShader(held);

    held = SHLChunk::create();
    addRefCP(held);
    beginEditCP(held);
    held->setVertexProgram(vertex);
    if(fragment != NULL)
        held->setFragmentProgram(fragment);
    endEditCP(held);

    ChunkMaterialPtr mat = group->getMaterial();
    beginEditCP(mat, ChunkMaterial::ChunksFieldMask);
    mat->addChunk(held, State::AutoSlotReplace);
    endEditCP(mat, ChunkMaterial::ChunksFieldMask);
}

void releaseLensShader(SHLChunkPtr &held)
{
    if(held != NullFC)
        subRefCP(held);

    held = NullFC;
}

OSG_END_NAMESPACE
