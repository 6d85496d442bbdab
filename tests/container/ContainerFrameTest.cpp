// The mechanical layer of the library's container types, driven by one table
// of expectations per type: registration, field ids and masks in table order,
// defaults, binary round trips, dumps and the accessor family. Every one of
// the 23 types must be registered once the library is loaded.
#include <OpenSG/OSGFieldContainerFactory.h>
#include <OpenSG/OSGFieldDescription.h>
#include <OpenSG/OSGFieldFactory.h>
#include <OpenSG/OSGLog.h>

#include <OpenSG/OSGBasicVolumeShadingStyle.h>
#include <OpenSG/OSGCommonSurfaceShaderMaterial.h>
#include <OpenSG/OSGComposableVolumeShadingStyle.h>
#include <OpenSG/OSGDropletFlowViewport.h>
#include <OpenSG/OSGFBOForeground.h>
#include <OpenSG/OSGForegroundGroup.h>
#include <OpenSG/OSGImprovedColorDisplayFilter.h>
#include <OpenSG/OSGLayer.h>
#include <OpenSG/OSGMultiCore.h>
#include <OpenSG/OSGNurbsCurve.h>
#include <OpenSG/OSGNurbsSurface.h>
#include <OpenSG/OSGNurbsTrimmingLoop.h>
#include <OpenSG/OSGOculusRiftFilter.h>
#include <OpenSG/OSGOculusRiftFilter2.h>
#include <OpenSG/OSGPBOGrabForeground.h>
#include <OpenSG/OSGPermutationSHLChunk.h>
#include <OpenSG/OSGPrimitiveDrawer.h>
#include <OpenSG/OSGScreenDumpForeground.h>
#include <OpenSG/OSGSkydomeBackground.h>
#include <OpenSG/OSGSortedPrimitives.h>
#include <OpenSG/OSGVolumeNode.h>
#include <OpenSG/OSGVolumeShadingStyle.h>
#include <OpenSG/OSGVolumeViewport.h>

#include <support/MemoryDataHandler.h>

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

using namespace osg;
using corvanetest::MemoryDataHandler;

namespace
{

// --- the tables -------------------------------------------------------------------

/// One field as tabled. def is the default in the field's own text form;
/// null means NullFC for a pointer and empty for a list.
struct FieldSpec
{
    std::string name;
    std::string type;
    const char *def;
};

enum Family
{
    GetFamily,
    EditFamily
};

struct TypeSpec
{
    const char            *name;
    const char            *parent;
    const char            *dataParent; // parent name of the "<name>Ptr" data type
    UInt32                 firstId;
    Family                 family;
    std::vector<FieldSpec> fields;
};

void PrintTo(const TypeSpec &spec, std::ostream *os)
{
    *os << spec.name;
}

const char *const Identity = "1 0 0 0 0 1 0 0 0 0 1 0 0 0 0 1";

/// The parameter families of the surface shader: factor, texture id,
/// coordinate set and channel mask.
void addSurfaceFamily(std::vector<FieldSpec> &f, const std::string &family,
                      const char *factorType, const char *factor, const char *mask)
{
    f.push_back({family + "Factor", factorType, factor});
    f.push_back({family + "TextureId", "SFInt32", "-1"});
    f.push_back({family + "TextureCoordinatesId", "SFInt32", "0"});
    f.push_back({family + "TextureChannelMask", "SFString", mask});
}

std::vector<FieldSpec> surfaceShaderFields(void)
{
    std::vector<FieldSpec> f;
    addSurfaceFamily(f, "emissive", "SFVec3f", "0 0 0", "rgb");
    addSurfaceFamily(f, "ambient", "SFVec3f", "0.2 0.2 0.2", "rgb");
    addSurfaceFamily(f, "diffuse", "SFVec3f", "0.8 0.8 0.8", "rgb");
    addSurfaceFamily(f, "specular", "SFVec3f", "0 0 0", "rgb");
    addSurfaceFamily(f, "shininess", "SFReal32", "0.1", "a");
    addSurfaceFamily(f, "alpha", "SFReal32", "1", "a");
    f.push_back({"normalFormat", "SFInt32", "0"});
    f.push_back({"normalSpace", "SFInt32", "0"});
    f.push_back({"normalScale", "SFVec3f", "2 2 2"});
    f.push_back({"normalBias", "SFVec3f", "-1 -1 -1"});
    f.push_back({"normalTextureId", "SFInt32", "-1"});
    f.push_back({"normalTextureCoordinatesId", "SFInt32", "0"});
    f.push_back({"normalTextureChannelMask", "SFString", "rgb"});
    addSurfaceFamily(f, "reflection", "SFVec3f", "0 0 0", "rgb");
    addSurfaceFamily(f, "transmission", "SFVec3f", "0 0 0", "rgb");
    addSurfaceFamily(f, "environment", "SFVec3f", "1 1 1", "rgb");
    f.push_back({"relativeIndexOfRefraction", "SFVec3f", "1 0 0"});
    f.push_back({"fresnelBlend", "SFReal32", "0"});
    f.push_back({"textureTransformEnabled", "MFInt32", nullptr});
    for(const char *family : {"emissive", "ambient", "diffuse", "specular", "shininess", "alpha",
                              "normal", "reflection", "transmission"})
        f.push_back({std::string(family) + "TextureCoordinateTransform", "SFMatrix", Identity});
    return f;
}

std::vector<FieldSpec> riftFields(void)
{
    return {{"distortionK", "SFVec4f", "1 0.22 0.24 0"},
            {"chromaAbCorrection", "SFVec4f", "1 0 1 0"},
            {"width", "SFUInt32", "1280"},
            {"height", "SFUInt32", "800"},
            {"lensSeparationDistance", "SFReal32", "0.064"},
            {"hScreenSize", "SFReal32", "0.14976"},
            {"vScreenSize", "SFReal32", "0.0935"},
            {"leftEye", "SFBool", "TRUE"}};
}

const std::vector<TypeSpec> &allTypes(void)
{
    static const std::vector<TypeSpec> types = {
        {"VolumeViewport", "Viewport", "ViewportPtr", 13, GetFamily,
         {{"enabled", "SFBool", "TRUE"},
          {"excludeNodes", "MFNodePtr", nullptr},
          {"volumeNodes", "MFNodeCorePtr", nullptr},
          {"dirty", "SFBool", "TRUE"}}},
        {"VolumeNode", "Group", "GroupPtr", 3, GetFamily,
         {{"voxels", "SFTextureChunkPtr", nullptr},
          {"swapped", "SFBool", "FALSE"},
          {"normals", "SFTextureChunkPtr", nullptr},
          {"transferFunc", "SFTextureChunkPtr", nullptr},
          {"stepSize", "SFReal32", "0.004"},
          {"rayGenType", "SFUInt32", "1"},
          {"bvGeoType", "SFUInt32", "2"},
          {"traversalType", "SFUInt32", "1"},
          {"normalGenType", "SFUInt32", "2"},
          {"transferFuncType", "SFUInt32", "1"},
          {"shadingStyle", "SFNodeCorePtr", nullptr},
          {"composableStyle", "MFNodeCorePtr", nullptr},
          {"dimensions", "SFVec3f", "1 1 1"},
          {"sliceThickness", "SFVec3f", "1 1 1"}}},
        {"VolumeShadingStyle", "NodeCore", "NodeCorePtr", 3, GetFamily,
         {{"enabled", "SFBool", "TRUE"},
          {"shadingFuncType", "SFUInt32", "0"},
          {"retainedOpacity", "SFReal32", "1"},
          {"boundaryOpacity", "SFReal32", "0"},
          {"opacityFactor", "SFReal32", "1"},
          {"silhouetteRetainedOpacity", "SFReal32", "1"},
          {"silhouetteBoundaryOpacity", "SFReal32", "0"},
          {"silhouetteOpacityFactor", "SFReal32", "1"},
          {"threshold", "SFReal32", "0"}}},
        {"BasicVolumeShadingStyle", "VolumeShadingStyle", "VolumeShadingStylePtr", 12, GetFamily,
         {{"lighting", "SFBool", "FALSE"},
          {"shadows", "SFBool", "FALSE"},
          {"phaseFunction", "SFUInt32", "0"},
          {"distanceFactor", "SFReal32", "1"},
          {"interiorFactor", "SFReal32", "1"},
          {"lightingFactor", "SFReal32", "1"},
          {"resolutionFactor", "SFReal32", "1"},
          {"diffuseColor", "SFColor3f", "0.75 0.75 0.75"},
          {"emissiveColor", "SFColor3f", "0.5 0.5 0.5"},
          {"specularColor", "SFColor3f", "1 1 1"},
          {"shininess", "SFReal32", "0.2"}}},
        {"ComposableVolumeShadingStyle", "VolumeShadingStyle", "VolumeShadingStylePtr", 12, GetFamily,
         {{"parallelColor", "SFColor3f", "0 0 0"},
          {"orthogonalColor", "SFColor3f", "1 1 1"},
          {"edgeColor", "SFColor3f", "0 0 0"},
          {"colorSteps", "SFInt32", "4"}}},
        {"DropletFlowViewport", "Viewport", "ViewportPtr", 13, EditFamily,
         {{"enabled", "SFBool", "TRUE"},
          {"matMode", "SFInt32", "0"},
          {"textures", "MFTextureChunkPtr", nullptr},
          {"material", "SFChunkMaterialPtr", nullptr},
          {"dirty", "SFBool", "TRUE"},
          {"time", "SFTime", "0"},
          {"timeStep", "SFTime", "0.4"},
          {"timeDelay", "SFTime", "0.01"},
          {"surfaceMapSize", "SFVec2f", "256 256"},
          {"noiseMapSize", "SFVec2f", "32 32"},
          {"perturbAngle", "SFReal32", "0.52"},
          {"frictionN", "SFReal32", "8"},
          {"frictionSigma", "SFReal32", "0.5"},
          {"fluidDensity", "SFReal32", "1"},
          {"fluidViscosity", "SFReal32", "1"},
          {"contactAngle", "SFReal32", "1.570796"},
          {"fluidColor", "SFColor4f", "0.1 0.2 0.9 1"},
          {"force", "SFVec3f", "0 -0.1 0"},
          {"sources", "MFVec3f", nullptr},
          {"pause", "SFBool", "FALSE"}}},
        {"NurbsSurface", "Geometry", "GeometryPtr", 28, GetFamily,
         {{"controlPoint", "SFGeoPositionsPtr", nullptr},
          {"uOrder", "SFUInt32", "3"},
          {"vOrder", "SFUInt32", "3"},
          {"uKnot", "MFReal32", nullptr},
          {"vKnot", "MFReal32", nullptr},
          {"uTessellation", "SFInt32", "0"},
          {"vTessellation", "SFInt32", "0"},
          {"uDim", "SFUInt32", "0"},
          {"vDim", "SFUInt32", "0"},
          {"trimmingLoop", "MFNodeCorePtr", nullptr},
          {"controlTexCoord", "SFGeoTexCoordsPtr", nullptr},
          {"fillGeo", "SFBool", "TRUE"},
          {"numVertices", "SFUInt32", "0"},
          {"dirty", "SFBool", "TRUE"},
          {"SurfaceGLId", "SFInt32", "0"}}},
        {"NurbsCurve", "Geometry", "GeometryPtr", 28, EditFamily,
         {{"controlPoint", "SFGeoPositionsPtr", nullptr},
          {"order", "SFUInt32", "3"},
          {"knot", "MFReal32", nullptr},
          {"tessellation", "SFInt32", "0"},
          {"controlCurve", "SFBool", "FALSE"},
          {"polyline", "SFBool", "FALSE"},
          {"fillGeo", "SFBool", "TRUE"},
          {"numVertices", "SFUInt32", "0"},
          {"dirty", "SFBool", "TRUE"},
          {"SurfaceGLId", "SFInt32", "0"}}},
        {"NurbsTrimmingLoop", "NodeCore", "NodeCorePtr", 3, GetFamily,
         {{"trimmingContour", "MFNodeCorePtr", nullptr}, {"trimOnly", "SFBool", "TRUE"}}},
        {"SortedPrimitives", "MaterialDrawable", "MaterialDrawablePtr", 4, GetFamily,
         {{"refPoints", "SFGeoPositionsPtr", nullptr},
          {"positions", "SFGeoPositionsPtr", nullptr},
          {"normals", "SFGeoNormalsPtr", nullptr},
          {"tangents", "SFGeoNormalsPtr", nullptr},
          {"colors", "SFGeoColorsPtr", nullptr},
          {"texCoords", "SFGeoTexCoordsPtr", nullptr},
          {"indices", "SFGeoIndicesPtr", nullptr},
          {"indexArray", "MFInt32", nullptr},
          {"offsetArray", "MFInt32", nullptr},
          {"size", "SFVec3f", "1 1 1"},
          {"mode", "SFUInt32", "0"},
          {"drawOrder", "SFUInt32", "0"},
          {"thresholdVal", "SFReal32", "0.85"},
          {"thresholdDir", "SFVec3f", "0 1 0"},
          {"occluderSpheres", "MFVec4f", nullptr},
          {"lowerBound", "SFReal32", "0.25"},
          {"indicesSize", "SFUInt32", "0"},
          {"sort", "SFUInt32", "0"}}},
        {"PrimitiveDrawer", "MaterialDrawable", "MaterialDrawablePtr", 4, EditFamily,
         {{"libName", "SFString", ""}, {"paramDic", "MFString", nullptr}}},
        {"FBOForeground", "Foreground", "ForegroundPtr", 3, EditFamily,
         {{"foreground", "SFForegroundPtr", nullptr},
          {"textures", "MFTextureChunkPtr", nullptr},
          {"textureResizeMode", "SFUInt32", "0"},
          {"deactivateViewport", "SFBool", "FALSE"},
          {"overrideViewport", "SFVec4f", "0 0 0 0"}}},
        {"ForegroundGroup", "Foreground", "ForegroundPtr", 3, EditFamily,
         {{"foregrounds", "MFForegroundPtr", nullptr}}},
        {"PBOGrabForeground", "GrabForeground", "GrabForegroundPtr", 5, EditFamily,
         {{"sourceTexture", "SFTextureChunkPtr", nullptr}, {"numPBOs", "SFInt32", "1"}}},
        {"ScreenDumpForeground", "GrabForeground", "GrabForegroundPtr", 5, GetFamily,
         {{"filenames", "MFString", nullptr}}},
        {"ImprovedColorDisplayFilter", "DisplayFilter", "DisplayFilterPtr", 3, EditFamily,
         {{"gamma", "SFReal32", "2.4"},
          {"matrix", "SFMatrix", Identity},
          {"width", "SFUInt32", "1"},
          {"height", "SFUInt32", "1"},
          {"depth", "SFUInt32", "2"},
          {"table", "MFVec3f", nullptr},
          {"debugColor", "SFVec4f", "0 0 0 1"},
          {"debugMode", "SFInt32", "0"}}},
        {"OculusRiftFilter", "DisplayFilter", "DisplayFilterPtr", 3, EditFamily, riftFields()},
        // the data type's parent name is not a type's name, on purpose
        {"OculusRiftFilter2", "DisplayFilter", "DisplayFilter2Ptr", 3, EditFamily, riftFields()},
        {"PermutationSHLChunk", "SHLChunk", "SHLChunkPtr", 15, EditFamily,
         {{"vertexProgramPrefix", "SFString", ""},
          {"fragmentProgramPrefix", "SFString", ""},
          {"geometryProgramPrefix", "SFString", ""},
          {"permutationParameters", "MFShaderParameterPtr", nullptr},
          {"isTransparent", "SFBool", "FALSE"}}},
        {"CommonSurfaceShaderMaterial", "ChunkMaterial", "ChunkMaterialPtr", 6, EditFamily,
         surfaceShaderFields()},
        {"MultiCore", "Group", "GroupPtr", 3, EditFamily, {{"cores", "MFNodeCorePtr", nullptr}}},
        {"Layer", "Group", "GroupPtr", 3, GetFamily,
         {{"pickable", "MFBool", nullptr}, {"visible", "MFBool", nullptr}, {"hit", "SFReal32", "-1"}}},
        {"SkydomeBackground", "Background", "BackgroundPtr", 2, GetFamily,
         {{"sphereRes", "SFUInt32", "8"},
          {"latlongTexture", "SFTextureChunkPtr", nullptr},
          {"sphere", "SFNodePtr", nullptr},
          {"beacon", "SFNodePtr", nullptr},
          {"material", "SFMaterialPtr", nullptr}}},
    };
    return types;
}

// --- helpers ---------------------------------------------------------------------

bool isPointer(const FieldSpec &f)
{
    return f.type.size() > 3 && f.type.compare(f.type.size() - 3, 3, "Ptr") == 0;
}

bool isMulti(const FieldSpec &f)
{
    return f.type.compare(0, 2, "MF") == 0;
}

BitVector maskOf(UInt32 id)
{
    return BitVector(1) << id;
}

std::string textOf(const Field *field)
{
    std::string text;
    field->getValueByStr(text);
    return text;
}

/// The text that a fresh field of the type gives after reading text.
std::string canonicalText(const std::string &type, const char *text)
{
    std::unique_ptr<Field> field(FieldFactory::the().createField(type.c_str()));
    if(field == nullptr)
        return "no field type " + type;
    field->pushValueByStr(text);
    return textOf(field.get());
}

/// What copyToBin writes for the fields in mask.
std::vector<UInt8> bytesOf(FieldContainerPtr fc, BitVector mask)
{
    MemoryDataHandler mem;
    fc->copyToBin(mem, mask);
    mem.flush();
    return mem.payload();
}

/// Puts container ids into a pointer field through copyFromBin: the one
/// generic way in, since pointer fields have no text form.
void setIds(FieldContainerPtr fc, UInt32 id, bool multi, const std::vector<UInt32> &ids)
{
    MemoryDataHandler mem;
    if(multi)
        mem.putValue(UInt32(ids.size()));
    for(UInt32 v : ids)
        mem.putValue(v);
    mem.flush();
    fc->copyFromBin(mem, maskOf(id));
    EXPECT_FALSE(mem.hasReadError());
}

std::vector<UInt8> idBytes(bool multi, const std::vector<UInt32> &ids)
{
    std::vector<UInt32> words;
    if(multi)
        words.push_back(UInt32(ids.size()));
    words.insert(words.end(), ids.begin(), ids.end());
    std::vector<UInt8> out;
    for(UInt32 w : words)
        for(int shift = 24; shift >= 0; shift -= 8)
            out.push_back(UInt8(w >> shift));
    return out;
}

/// Two sample texts per value type, unlike every tabled default.
const std::map<std::string, std::pair<const char *, const char *>> &samples(void)
{
    static const std::map<std::string, std::pair<const char *, const char *>> s = {
        {"Bool", {"TRUE", "FALSE"}},
        {"Int32", {"-7", "123456"}},
        {"UInt32", {"77", "4000000000"}},
        {"Real32", {"-2.5", "1e-3"}},
        {"Time", {"12.25", "-0.5"}},
        {"String", {"sample text", "second"}},
        {"Vec2f", {"3 -4", "0.5 0.25"}},
        {"Vec3f", {"1.5 -2 3", "7 8 9"}},
        {"Vec4f", {"1 2 3 4", "-1 -2 -3 -4"}},
        {"Color3f", {"0.25 0.5 0.125", "0.1 0.3 0.7"}},
        {"Color4f", {"0.25 0.5 0.125 0.75", "0 0 1 0.5"}},
        {"Matrix", {"1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16", Identity}},
    };
    return s;
}

/// Containers that pointer fields can point to, one per pointer type,
/// created once: a concrete type of the pointer's class.
class Targets
{
  public:
    ~Targets(void)
    {
        for(auto &t : _made)
            subRefCP(t.second);
    }

    FieldContainerPtr forField(const Field *field)
    {
        std::string ptrName = field->getContentType().getCName();
        auto it             = _made.find(ptrName);
        if(it != _made.end())
            return it->second;
        FieldContainerFactory *f = FieldContainerFactory::the();
        FieldContainerType *type = f->findType(ptrName.substr(0, ptrName.size() - 3).c_str());
        FieldContainerPtr fc;
        for(auto t = f->beginTypes(); type != nullptr && fc == NullFC && t != f->endTypes(); ++t)
            if(!t->second->isAbstract() && t->second->isDerivedFrom(*type))
                fc = f->createFieldContainer(t->second->getCName());
        if(fc != NullFC)
            addRefCP(fc);
        _made[ptrName] = fc;
        return fc;
    }

  private:
    std::map<std::string, FieldContainerPtr> _made;
};

class ContainerFrame : public ::testing::TestWithParam<TypeSpec>
{
  protected:
    void SetUp(void) override
    {
        const TypeSpec &spec = GetParam();
        _type                = FieldContainerFactory::the()->findType(spec.name);
        ASSERT_NE(_type, nullptr) << spec.name << " is not registered";
    }

    void TearDown(void) override
    {
        for(FieldContainerPtr &fc : _made)
        {
            clearPointers(fc);
            subRefCP(fc);
        }
    }

    FieldContainerPtr make(void)
    {
        FieldContainerPtr fc = FieldContainerFactory::the()->createFieldContainer(GetParam().name);
        if(fc != NullFC)
        {
            addRefCP(fc);
            _made.push_back(fc);
        }
        return fc;
    }

    UInt32 idOf(size_t i) const { return GetParam().firstId + UInt32(i); }

    BitVector ownMask(void) const
    {
        BitVector mask = 0;
        for(size_t i = 0; i < GetParam().fields.size(); ++i)
            mask |= maskOf(idOf(i));
        return mask;
    }

    BitVector parentMask(void) const { return maskOf(GetParam().firstId) - 1; }

    /// Gives every own field a value unlike its default.
    void fill(FieldContainerPtr fc)
    {
        const TypeSpec &spec = GetParam();
        for(size_t i = 0; i < spec.fields.size(); ++i)
        {
            const FieldSpec &f = spec.fields[i];
            Field *field       = fc->getField(idOf(i));
            ASSERT_NE(field, nullptr) << f.name;
            if(isPointer(f))
            {
                FieldContainerPtr target = _targets.forField(field);
                ASSERT_NE(target, NullFC) << "nothing to point to from " << f.name;
                UInt32 id = target.getFieldContainerId();
                setIds(fc, idOf(i), isMulti(f), isMulti(f) ? std::vector<UInt32>{id, 0, id}
                                                           : std::vector<UInt32>{id});
                continue;
            }
            auto sample = samples().find(f.type.substr(2));
            ASSERT_NE(sample, samples().end()) << "no sample for " << f.type;
            if(isMulti(f))
            {
                field->pushValueByStr(sample->second.first);
                field->pushValueByStr(sample->second.second);
            }
            else
            {
                bool firstIsDefault = f.def != nullptr &&
                                      canonicalText(f.type, f.def) ==
                                          canonicalText(f.type, sample->second.first);
                field->pushValueByStr(firstIsDefault ? sample->second.second
                                                     : sample->second.first);
            }
        }
    }

    /// Empties the pointer fields, so that the containers never let go of
    /// references they were not given.
    void clearPointers(FieldContainerPtr fc)
    {
        const TypeSpec &spec = GetParam();
        for(size_t i = 0; i < spec.fields.size(); ++i)
            if(isPointer(spec.fields[i]))
                setIds(fc, idOf(i), isMulti(spec.fields[i]),
                       isMulti(spec.fields[i]) ? std::vector<UInt32>{} : std::vector<UInt32>{0});
    }

    FieldContainerType            *_type = nullptr;
    std::vector<FieldContainerPtr> _made;
    Targets                        _targets;
};

std::string specName(const ::testing::TestParamInfo<TypeSpec> &info)
{
    return info.param.name;
}

} // namespace

INSTANTIATE_TEST_SUITE_P(AllTypes, ContainerFrame, ::testing::ValuesIn(allTypes()), specName);

// --- registration -----------------------------------------------------------------

TEST_P(ContainerFrame, IsCreatedByNameBelowItsParent)
{
    const TypeSpec &spec = GetParam();
    FieldContainerPtr fc = make();
    ASSERT_NE(fc, NullFC);
    EXPECT_STREQ(fc->getTypeName(), spec.name);
    EXPECT_EQ(fc->getType(), *_type);
    EXPECT_FALSE(_type->isAbstract());
    ASSERT_NE(_type->getParent(), nullptr);
    EXPECT_STREQ(_type->getParent()->getCName(), spec.parent);
    EXPECT_STREQ(_type->getCParentName(), spec.parent);
}

TEST_P(ContainerFrame, RegistersPointerDataAndFieldTypes)
{
    const TypeSpec &spec = GetParam();
    std::string ptr      = std::string(spec.name) + "Ptr";
    for(FieldType::Cardinality card : {FieldType::SINGLE_FIELD, FieldType::MULTI_FIELD})
    {
        std::string name = (card == FieldType::SINGLE_FIELD ? "SF" : "MF") + ptr;
        FieldType *type  = FieldFactory::the().getFieldType(name.c_str());
        ASSERT_NE(type, nullptr) << name;
        EXPECT_EQ(type->getCardinality(), card);
        EXPECT_STREQ(type->getCParentName(), "Field");
        EXPECT_EQ(type->getContentType().getCName(), ptr);
        EXPECT_STREQ(type->getContentType().getCParentName(), spec.dataParent);
    }
}

TEST_P(ContainerFrame, PointerFieldsHaveNoTextForm)
{
    std::string name = std::string("SF") + GetParam().name + "Ptr";
    std::unique_ptr<Field> field(FieldFactory::the().createField(name.c_str()));
    ASSERT_NE(field, nullptr);
    LogCapture log;
    std::string text = "kept";
    field->getValueByStr(text);
    EXPECT_EQ(text, "kept");
    EXPECT_EQ(log.take(), "LOG:  Error To String Conversion not available for \n");
    field->pushValueByStr("1");
    EXPECT_EQ(log.take(), "LOG:  Error From String Conversion not available for \n");
}

// --- ids, masks, defaults -------------------------------------------------------------

TEST_P(ContainerFrame, NumbersFieldsOnFromTheParentInTableOrder)
{
    const TypeSpec &spec = GetParam();
    EXPECT_EQ(_type->getParent()->getNumFieldDescs() + 1, spec.firstId)
        << "the parent's NextFieldId";
    ASSERT_EQ(_type->getNumFieldDescs(), spec.firstId - 1 + spec.fields.size());
    for(size_t i = 0; i < spec.fields.size(); ++i)
    {
        const FieldSpec &f        = spec.fields[i];
        const FieldDescription *d = _type->getFieldDescription(idOf(i));
        ASSERT_NE(d, nullptr) << f.name;
        EXPECT_EQ(d->getCName(), f.name);
        EXPECT_EQ(d->getFieldType().getCName(), f.type) << f.name;
        EXPECT_EQ(d->getFieldId(), idOf(i));
        EXPECT_EQ(d->getFieldMask(), maskOf(idOf(i))) << f.name;
        EXPECT_FALSE(d->isInternal()) << f.name;
        EXPECT_EQ(_type->findFieldDescription(f.name.c_str()), d);
    }
}

TEST_P(ContainerFrame, StartsWithTheTabledDefaults)
{
    const TypeSpec &spec = GetParam();
    FieldContainerPtr fc = make();
    for(size_t i = 0; i < spec.fields.size(); ++i)
    {
        const FieldSpec &f = spec.fields[i];
        const Field *field = fc->getField(f.name.c_str());
        ASSERT_NE(field, nullptr) << f.name;
        EXPECT_EQ(field, fc->getField(idOf(i)));
        // a created NURBS core has already registered its GL object and
        // holds its id; only the prototype keeps the tabled 0
        if(f.name == "SurfaceGLId")
            continue;
        if(f.def != nullptr)
            EXPECT_EQ(textOf(field), canonicalText(f.type, f.def)) << f.name;
        else if(isMulti(f))
            EXPECT_EQ(field->getSize(), 0u) << f.name;
        else
            EXPECT_EQ(bytesOf(fc, maskOf(idOf(i))), idBytes(false, {0})) << f.name << " is NullFC";
    }
}

// --- binary round trips ---------------------------------------------------------------

TEST_P(ContainerFrame, RoundTripsEveryOwnField)
{
    const TypeSpec &spec   = GetParam();
    FieldContainerPtr def  = make();
    FieldContainerPtr src  = make();
    FieldContainerPtr copy = make();
    fill(src);

    MemoryDataHandler mem;
    UInt32 size = src->getBinSize(FieldBits::AllFields);
    src->copyToBin(mem, FieldBits::AllFields);
    mem.flush();
    EXPECT_EQ(mem.payload().size(), size);
    copy->copyFromBin(mem, FieldBits::AllFields);
    EXPECT_FALSE(mem.hasReadError());

    for(size_t i = 0; i < spec.fields.size(); ++i)
    {
        BitVector mask = maskOf(idOf(i));
        EXPECT_NE(bytesOf(src, mask), bytesOf(def, mask)) << spec.fields[i].name << " was not filled";
        EXPECT_EQ(bytesOf(copy, mask), bytesOf(src, mask)) << spec.fields[i].name;
        EXPECT_EQ(src->getBinSize(mask), bytesOf(src, mask).size()) << spec.fields[i].name;
    }
}

TEST_P(ContainerFrame, ParentOnlyMaskTouchesNoOwnField)
{
    // parent fields may differ between instances (GL-object ids), so each
    // instance is compared with itself
    FieldContainerPtr def          = make();
    FieldContainerPtr filled       = make();
    UInt32 parentSize              = filled->getBinSize(parentMask());
    std::vector<UInt8> parentBytes = bytesOf(filled, parentMask());
    fill(filled);
    std::vector<UInt8> own = bytesOf(filled, ownMask());

    EXPECT_EQ(filled->getBinSize(parentMask()), parentSize);
    EXPECT_EQ(bytesOf(filled, parentMask()), parentBytes);

    MemoryDataHandler mem;
    def->copyToBin(mem, parentMask());
    mem.flush();
    filled->copyFromBin(mem, parentMask());
    EXPECT_FALSE(mem.hasReadError());
    EXPECT_EQ(bytesOf(filled, ownMask()), own);
}

TEST_P(ContainerFrame, PointerFieldsReadNullAndUnknownIdsAsNullFC)
{
    const TypeSpec &spec = GetParam();
    FieldContainerPtr fc = make();
    const UInt32 unknown = 0x7FFFFFF0;
    for(size_t i = 0; i < spec.fields.size(); ++i)
    {
        const FieldSpec &f = spec.fields[i];
        if(!isPointer(f))
            continue;
        std::vector<UInt32> sent = isMulti(f) ? std::vector<UInt32>{0, unknown}
                                              : std::vector<UInt32>{unknown};
        setIds(fc, idOf(i), isMulti(f), sent);
        std::vector<UInt32> back(sent.size(), 0);
        EXPECT_EQ(bytesOf(fc, maskOf(idOf(i))), idBytes(isMulti(f), back)) << f.name;
    }
}

// --- dump -------------------------------------------------------------------------------

TEST_P(ContainerFrame, DumpsItsOneLine)
{
    const TypeSpec &spec = GetParam();
    FieldContainerPtr fc = make();
    LogCapture log;
    fc->dump(0, 0);
    std::string text = log.take();
    if(std::string(spec.name) != "MultiCore")
    {
        EXPECT_EQ(text, std::string("LOG:  Dump ") + spec.name + " NI\n");
        return;
    }
    // the multi core dumps as the group it is
    FieldContainerPtr group = FieldContainerFactory::the()->createFieldContainer("Group");
    addRefCP(group);
    group->dump(0, 0);
    std::string expected = log.take();
    subRefCP(group);
    ASSERT_NE(expected.find("Group"), std::string::npos);
    expected.replace(expected.find("Group"), 5, "MultiCore");
    EXPECT_EQ(text, expected);
}

// --- what only the class itself shows -----------------------------------------------------

namespace
{

/// Whether T has edit<SF/MF><Field>, the mark of the newer accessor family.
#define CORVANE_EDIT_DETECTOR(Accessor)                                             \
    template <class T, class = void>                                                \
    struct HasEdit##Accessor : std::false_type                                      \
    {                                                                               \
    };                                                                              \
    template <class T>                                                              \
    struct HasEdit##Accessor<T, std::void_t<decltype(&T::edit##Accessor)>>          \
        : std::true_type                                                            \
    {                                                                               \
    };

// Active types: class, parent, family, and one field to probe the family with.
#define CORVANE_ACTIVE_TYPES(X)                                                     \
    X(VolumeShadingStyle, NodeCore, GetFamily, SFEnabled)                           \
    X(BasicVolumeShadingStyle, VolumeShadingStyle, GetFamily, SFShininess)          \
    X(ComposableVolumeShadingStyle, VolumeShadingStyle, GetFamily, SFColorSteps)    \
    X(NurbsTrimmingLoop, NodeCore, GetFamily, MFTrimmingContour)                    \
    X(MultiCore, Group, EditFamily, MFCores)                                        \
    X(Layer, Group, GetFamily, MFVisible)                                           \
    X(VolumeViewport, Viewport, GetFamily, MFVolumeNodes)                           \
    X(VolumeNode, Group, GetFamily, SFVoxels)                                       \
    X(DropletFlowViewport, Viewport, EditFamily, MFTextures)                        \
    X(PermutationSHLChunk, SHLChunk, EditFamily, MFPermutationParameters)           \
    X(CommonSurfaceShaderMaterial, ChunkMaterial, EditFamily, SFFresnelBlend)       \
    X(NurbsSurface, Geometry, GetFamily, SFControlPoint)                            \
    X(NurbsCurve, Geometry, EditFamily, SFControlPoint)                             \
    X(SortedPrimitives, MaterialDrawable, GetFamily, MFOccluderSpheres)             \
    X(PrimitiveDrawer, MaterialDrawable, EditFamily, MFParamDic)                    \
    X(FBOForeground, Foreground, EditFamily, SFForeground)                          \
    X(ForegroundGroup, Foreground, EditFamily, MFForegrounds)                       \
    X(PBOGrabForeground, GrabForeground, EditFamily, SFSourceTexture)               \
    X(ScreenDumpForeground, GrabForeground, GetFamily, MFFilenames)                 \
    X(ImprovedColorDisplayFilter, DisplayFilter, EditFamily, SFGamma)               \
    X(OculusRiftFilter, DisplayFilter, EditFamily, SFLeftEye)                       \
    X(OculusRiftFilter2, DisplayFilter, EditFamily, SFLeftEye)                      \
    X(SkydomeBackground, Background, GetFamily, SFSphereRes)

#define CORVANE_CHECK_FAMILY(Class, Parent, Fam, Accessor)                          \
    namespace family_##Class                                                        \
    {                                                                               \
    CORVANE_EDIT_DETECTOR(Accessor)                                                 \
    static_assert(HasEdit##Accessor<Class>::value == (Fam == EditFamily),           \
                  #Class " has the wrong accessor family");                         \
    }
CORVANE_ACTIVE_TYPES(CORVANE_CHECK_FAMILY)

struct ClassFacts
{
    const char         *name;
    FieldContainerType *type;
    BitVector           influence;
    BitVector           parentInfluence;
    UInt32              nextFieldId;
    UInt32              parentNextFieldId;
};

#define CORVANE_CLASS_FACTS(Class, Parent, Fam, Accessor)                           \
    {#Class, &Class::getClassType(), Class::MTInfluenceMask,                        \
     Parent::MTInfluenceMask,                                                       \
     UInt32(Class::NextFieldId), UInt32(Parent::NextFieldId)},

} // namespace

TEST(ContainerFrameClasses, KeepTheParentsInfluenceMaskAndContinueItsIds)
{
    const ClassFacts facts[] = {CORVANE_ACTIVE_TYPES(CORVANE_CLASS_FACTS)};
    EXPECT_EQ(sizeof(facts) / sizeof(facts[0]), allTypes().size());
    EXPECT_EQ(allTypes().size(), 23u);
    for(const ClassFacts &c : facts)
    {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(c.influence, c.parentInfluence);
        EXPECT_EQ(FieldContainerFactory::the()->findType(c.name), c.type);
        const TypeSpec *spec = nullptr;
        for(const TypeSpec &s : allTypes())
            if(std::string(s.name) == c.name)
                spec = &s;
        ASSERT_NE(spec, nullptr);
        EXPECT_EQ(c.parentNextFieldId, spec->firstId);
        EXPECT_EQ(c.nextFieldId, spec->firstId + spec->fields.size());
    }
}
