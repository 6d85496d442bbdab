/// What the volume classes do to their texture chunks again and again:
/// make one on first need, let it go, and set one wrap and one filter on
/// all axes.
#ifndef _VOLUMETEXTUREUTILS_H_
#define _VOLUMETEXTUREUTILS_H_

#include <OpenSG/OSGTextureChunk.h>

struct VolumeTextureUtils
{
    /// Creates the chunk if it is null and takes one reference to it.
    static void ensure(osg::TextureChunkPtr &chunk)
    {
        if(chunk == osg::NullFC)
        {
            chunk = osg::TextureChunk::create();
            osg::addRefCP(chunk);
        }
    }

    /// Drops the reference and leaves the pointer null.
    static void release(osg::TextureChunkPtr &chunk)
    {
        if(chunk != osg::NullFC)
            osg::subRefCP(chunk);
        chunk = osg::NullFC;
    }

    /// wrap on S, T and R, filter for minification and magnification; the
    /// caller brackets it with the edit.
    static void setSampling(const osg::TextureChunkPtr &chunk, GLenum wrap, GLenum filter)
    {
        chunk->setWrapS(wrap);
        chunk->setWrapT(wrap);
        chunk->setWrapR(wrap);
        chunk->setMinFilter(filter);
        chunk->setMagFilter(filter);
    }
};

#endif
