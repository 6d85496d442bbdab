// Geometry drawn into an EGL window: covered pixels of known quads through
// every path (display list, direct, VBO, draw action), vertex colours and
// multi-indexed data, and the life of the display list: built once, rebuilt
// on a change of the data, freed when the geometry goes.
#include "GeometryRenderScene.h"

#include <OpenSG/OSGStatCollector.h>

using namespace osg;
using namespace geometrytest;

TEST(GeometryRender, QuadCoversItsPixelsOnEveryPath)
{
    RenderScene s;
    NEED_GL(s);

    GeometryPtr geo = greenQuad();
    s.add(geo);
    ASSERT_GT(geo->getGLId(), 0);

    std::vector<UInt8> img = s.render();
    savePNG(img, "quad");
    expectQuad(img, 16, 47, "display list");
    EXPECT_NE(s.win->getGLObjectId(geo->getGLId()), 0u);

    beginEditCP(geo, Geometry::DlistCacheFieldMask);
    geo->setDlistCache(false);
    endEditCP(geo, Geometry::DlistCacheFieldMask);
    EXPECT_EQ(geo->getGLId(), 0);
    expectQuad(s.render(), 16, 47, "direct");

    expectQuad(s.render(true), 16, 47, "draw action");

    beginEditCP(geo, Geometry::DlistCacheFieldMask | Geometry::VboFieldMask);
    geo->setDlistCache(true);
    geo->setVbo(true);
    endEditCP(geo, Geometry::DlistCacheFieldMask | Geometry::VboFieldMask);
    img = s.render();
    expectQuad(img, 16, 47, "vbo");
    if(s.win->hasExtension("GL_ARB_vertex_buffer_object"))
    {
        EXPECT_NE(geo->getVboObject(s.win.getCPtr()), nullptr);
        EXPECT_EQ(s.win->getGLObjectId(geo->getGLId()), 0u);
    }
}

TEST(GeometryRender, VertexColoursAndMultiIndexedData)
{
    RenderScene s;
    NEED_GL(s);

    // two quads side by side, [-1,0] red and [0,1] blue, over half the
    // height; positions and colours have indices of their own
    GeoPositions3fPtr pos = GeoPositions3f::create();
    const Real32      xs[3] = {-1, 0, 1};
    for(UInt32 i = 0; i < 3; ++i)
    {
        pos->getField().push_back(Pnt3f(xs[i], -.5f, 0));
        pos->getField().push_back(Pnt3f(xs[i], .5f, 0));
    }
    GeoColors3fPtr col = GeoColors3f::create();
    col->getField().push_back(Color3f(1, 0, 0));
    col->getField().push_back(Color3f(0, 0, 1));
    GeoIndicesUI32Ptr ind = GeoIndicesUI32::create();
    // (position, colour) per corner
    const UInt32 tuples[] = {0, 0, 2, 0, 3, 0, 1, 0, 2, 1, 4, 1, 5, 1, 3, 1};
    for(UInt32 v : tuples)
        ind->getField().push_back(v);
    GeoPTypesUI8Ptr types = GeoPTypesUI8::create();
    types->getField().push_back(GL_QUADS);
    GeoPLengthsUI32Ptr lens = GeoPLengthsUI32::create();
    lens->getField().push_back(8);

    GeometryPtr geo = Geometry::create();
    beginEditCP(geo);
    geo->setPositions(pos);
    geo->setColors(col);
    geo->setIndices(ind);
    geo->setTypes(types);
    geo->setLengths(lens);
    geo->getMFIndexMapping()->push_back(Geometry::MapPosition);
    geo->getMFIndexMapping()->push_back(Geometry::MapColor);
    geo->setMaterial(unlit(Color3f(0, 1, 0)));
    endEditCP(geo);
    s.add(geo);

    for(int pass = 0; pass < 2; ++pass)
    {
        std::vector<UInt8> img = s.render();
        if(pass == 0)
            savePNG(img, "colours");
        UInt32 box[4];
        EXPECT_EQ(countColor(img, 255, 0, 0, box), 32u * 32u) << pass;
        EXPECT_EQ(box[0], 0u);
        EXPECT_EQ(box[2], 31u);
        EXPECT_EQ(box[1], 16u);
        EXPECT_EQ(box[3], 47u);
        EXPECT_EQ(countColor(img, 0, 0, 255, box), 32u * 32u) << pass;
        EXPECT_EQ(box[0], 32u);
        EXPECT_EQ(countColor(img, 0, 255, 0, box), 0u) << pass;

        // a buffer object cannot hold multi-indexed data: the list is used
        beginEditCP(geo, Geometry::VboFieldMask | Geometry::PositionsFieldMask);
        geo->setVbo(true);
        endEditCP(geo, Geometry::VboFieldMask | Geometry::PositionsFieldMask);
    }
    EXPECT_EQ(geo->getVboObject(s.win.getCPtr()), nullptr);
    EXPECT_NE(s.win->getGLObjectId(geo->getGLId()), 0u);

}

TEST(GeometryRender, DisplayListIsBuiltOnceAndRebuiltOnChange)
{
    RenderScene s;
    NEED_GL(s);

    GeometryPtr geo = greenQuad();
    addRefCP(geo);
    s.add(geo);

    expectQuad(s.render(), 16, 47, "first frame");
    UInt32 id   = UInt32(geo->getGLId());
    UInt32 list = s.win->getGLObjectId(id);
    ASSERT_NE(list, 0u);
    EXPECT_TRUE(glIsList(list));

    // data changed behind the geometry's back: the compiled list still
    // shows the old quad, so it was not compiled again
    GeoPositions3fPtr pos = GeoPositions3fPtr::dcast(geo->getPositions());
    for(UInt32 i = 0; i < 4; ++i)
        pos->getField()[i] = Pnt3f(pos->getField()[i][0] * 2, pos->getField()[i][1] * 2, 0);
    expectQuad(s.render(), 16, 47, "unannounced change");

    // announced: the same list is compiled again with the new data
    beginEditCP(pos, GeoPositions3f::GeoPropDataFieldMask);
    endEditCP(pos, GeoPositions3f::GeoPropDataFieldMask);
    std::vector<UInt8> img = s.render();
    expectQuad(img, 0, 63, "announced change");
    EXPECT_EQ(s.win->getGLObjectId(id), list);
    EXPECT_EQ(geo->getGLId(), Int32(id));

    // a new material is no reason to recompile
    beginEditCP(geo, Geometry::MaterialFieldMask);
    geo->setMaterial(unlit(Color3f(0, 1, 0)));
    endEditCP(geo, Geometry::MaterialFieldMask);
    for(UInt32 i = 0; i < 4; ++i)
        pos->getField()[i] = Pnt3f(pos->getField()[i][0] / 2, pos->getField()[i][1] / 2, 0);
    expectQuad(s.render(), 0, 63, "material change");

    // a geometry that goes frees its list at the end of the next frame
    s.clearChildren();
    subRefCP(geo);
    s.render();
    EXPECT_FALSE(glIsList(list));
}

TEST(GeometryRender, StatisticsCountWhatWasDrawn)
{
    RenderScene s;
    NEED_GL(s);

    s.add(greenQuad());
    s.add(makeBoxGeo(.2f, .2f, .2f, 1, 1, 1));

    StatCollector *coll = StatCollector::create();
    coll->getElem(Drawable::statNTriangles);
    coll->getElem(Drawable::statNGeoBytes);
    s.ra->setStatistics(coll);
    s.render();

    EXPECT_EQ(coll->getElem(Drawable::statNTriangles)->get(), 2 + 12);
    EXPECT_EQ(coll->getElem(Drawable::statNVertices)->get(), 4 + 6 * 4);
    EXPECT_EQ(coll->getElem(Drawable::statNPrimitives)->get(), 1 + 6);
    EXPECT_EQ(coll->getElem(Drawable::statNLines)->get(), 0);
    // positions, normals, texture coordinates and indices of both
    Int32 bytes = 4 * (12 + 12 + 8) + 4 * 4 + 24 * (12 + 12 + 8) + 24 * 4;
    EXPECT_EQ(coll->getElem(Drawable::statNGeoBytes)->getValue(), Real64(bytes));

    s.ra->setStatistics(NULL);
    delete coll;
}
