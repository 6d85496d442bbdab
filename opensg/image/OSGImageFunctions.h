/// Functions that fill images: generated textures.
#ifndef _OSGIMAGEFUNCTIONS_H_
#define _OSGIMAGEFUNCTIONS_H_

#include <OpenSG/OSGImage.h>

OSG_BEGIN_NAMESPACE

/// Fills image with fractal gradient noise (Ken Perlin's classic noise
/// summed over octaves): numOctaves octaves of frequency 4, 8, 16, ... and
/// amplitude 1/2, 1/4, ...; every 8-bit component of a 1-D (size x 1),
/// 2-D (size x size) or 3-D (size^3) image of pixelformat gets the sum,
/// each component at a neighbouring sample. With splitOctaves component f
/// holds octave f alone. The lattice comes from the C library's rand()
/// after srand(30757), so glibc gives the same bytes on every run (and the
/// application's random sequence is reset). False without an image or
/// when the image cannot be made.
bool createNoise(ImagePtr image, Image::PixelFormat pixelformat = Image::OSG_RGBA_PF,
                 UInt16 numOctaves = 6, UInt16 size = 128, UInt8 dim = 2,
                 bool splitOctaves = false);

OSG_END_NAMESPACE

#endif
