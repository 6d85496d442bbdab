// The attachment field "Transform" of a volume image, for the NIfTI and
// DICOM tests.
#ifndef _VOLUMETRANSFORMSUPPORT_H_
#define _VOLUMETRANSFORMSUPPORT_H_

#include <OpenSG/OSGImage.h>

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

namespace voltest
{

/// The numbers of the image's "Transform" (none without one).
inline std::vector<double> transformOf(osg::ImagePtr image)
{
    std::vector<double> m;
    const std::string  *text = image->findAttachmentField("Transform");
    if(text == nullptr)
        return m;
    std::istringstream in(*text);
    double             v;
    while(in >> v)
        m.push_back(v);
    return m;
}

/// Twelve numbers, each within tolerance of the wanted one.
inline void expectTransform(const std::vector<double> &got, const std::vector<double> &want,
                            double tolerance)
{
    ASSERT_EQ(got.size(), 12u);
    for(size_t i = 0; i < 12; ++i)
        EXPECT_NEAR(got[i], want[i], tolerance) << "element " << i;
}

} // namespace voltest

#endif
