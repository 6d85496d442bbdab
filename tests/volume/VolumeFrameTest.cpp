// The frame of a volume, end to end: ray entry points and directions from
// the position passes, and the ray-cast picture mixed with the scene.
#include "VolumeFrameSupport.h"

#include <OpenSG/VolumeNodeHandler.h>

#include <cstdio>

using namespace voltest;

TEST_F(VolumeFrame, Debug)
{
    beginEditCP(volume);
    volume->setVoxels(makeVoxels(16, 16, 16, [](Int32, Int32, Int32) { return UInt8(200); }));
    endEditCP(volume);
    render();
    render();
    std::vector<Vec4f> f = frame();
    Vec4f c = f[32 * W + 32];
    printf("frame %f %f %f %f\n", c[0], c[1], c[2], c[3]);
    VolumeNodeHandler *hd = volume->getVolume();
    for(TextureChunkPtr t : {hd->getFrontTexture(), hd->getBackTexture(), hd->getSceneColorTexture()})
    {
        std::vector<Vec4f> tx = texels(t);
        for(int y = 8; y < 64; y += 16)
        {
            for(int x = 8; x < 64; x += 16)
            {
                Vec4f v = tx[y * W + x];
                printf("(%.2f %.2f %.2f %.2f) ", v[0], v[1], v[2], v[3]);
            }
            printf("\n");
        }
        printf("--\n");
    }
    printf("children of volume node %u\n", volumeNode->getNChildren());
}
