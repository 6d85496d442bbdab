/// What the two lens-warp filters share: the fields whose edits reach their
/// uniforms, and the way their program joins a foreground's filter group.
#ifndef _LENSFILTERSUPPORT_H_
#define _LENSFILTERSUPPORT_H_

#include <OpenSG/OSGSHLChunk.h>

OSG_BEGIN_NAMESPACE

class DisplayFilterForeground;

/// The masks of every field of a lens filter (both have the same eight).
template <class FilterBaseT>
BitVector lensFieldsMask(void)
{
    return FilterBaseT::DistortionKFieldMask | FilterBaseT::ChromaAbCorrectionFieldMask |
           FilterBaseT::WidthFieldMask | FilterBaseT::HeightFieldMask |
           FilterBaseT::LensSeparationDistanceFieldMask | FilterBaseT::HScreenSizeFieldMask |
           FilterBaseT::VScreenSizeFieldMask | FilterBaseT::LeftEyeFieldMask;
}

/// Replaces held by a new program of these texts (fragment may be NULL, to
/// be set later) in the read-back group "ColorDisplayFilter" of fg. held
/// keeps a reference of its own, so that edits after the foreground dropped
/// its groups still find a chunk; releaseLensShader gives it up.
void attachLensShader(DisplayFilterForeground *fg, SHLChunkPtr &held, const char *vertex,
                      const char *fragment);

/// Drops the reference attachLensShader took and clears held.
void releaseLensShader(SHLChunkPtr &held);

OSG_END_NAMESPACE

#endif
