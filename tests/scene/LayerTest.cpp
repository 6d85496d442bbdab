// Layer: visible hides children from drawing and rendering, pickable from
// picking; children beyond the end of a mask are on, entries beyond the
// children are ignored; the frustum test still applies to what the mask
// lets through; hit holds the ray parameter of the last pick, -1 after a
// miss.
#include "CoresTestSupport.h"

#include <OpenSG/OSGLayer.h>
#include <OpenSG/OSGStatCollector.h>
#include <OpenSG/OSGThread.h>

using namespace osg;
using namespace corestest;

namespace
{

void setMask(const LayerPtr &layer, bool pickable, std::initializer_list<bool> values)
{
    const BitVector mask = pickable ? Layer::PickableFieldMask : Layer::VisibleFieldMask;
    MFBool         *field = pickable ? layer->getMFPickable() : layer->getMFVisible();

    beginEditCP(layer, mask);
    field->clear();
    for(bool v : values)
        field->push_back(v);
    endEditCP(layer, mask);
}

/// The layer's node over children placed by their matrices.
NodePtr layered(const LayerPtr &layer, std::initializer_list<std::pair<Matrix, RGBA>> children)
{
    NodePtr n = node(layer);
    beginEditCP(n, Node::ChildrenFieldMask);
    for(const auto &child : children)
        n->addChild(node(transform(child.first), {square(child.second, 1.f)}));
    endEditCP(n, Node::ChildrenFieldMask);
    return n;
}

/// Whether the current change list holds an edit of fc with mask.
bool changedWith(const FieldContainerPtr &fc, BitVector mask)
{
    ChangeList *cl = Thread::getCurrentChangeList();
    for(ChangeList::changed_const_iterator it = cl->beginChanged(); it != cl->endChanged(); ++it)
    {
        if(it->first == fc.getFieldContainerId() && (it->second & mask))
            return true;
    }
    return false;
}

} // namespace

TEST(LayerPick, PickableLetsTheRayThroughAndHitRecordsTheLastPick)
{
    // one behind the other on the ray: hits at 5, 6 and 7
    LayerPtr layer = Layer::create();
    NodePtr  scene = layered(layer, {{translation(0.f, 0.f, 0.f), Red},
                                     {translation(0.f, 0.f, -1.f), Green},
                                     {translation(0.f, 0.f, -2.f), Blue}});
    addRefCP(scene);

    EXPECT_EQ(layer->getHit(), -1.f);

    EXPECT_FLOAT_EQ(pick(scene, 0.f, 0.f), 5.f);
    EXPECT_FLOAT_EQ(layer->getHit(), 5.f);

    // children beyond the end of the mask take part
    setMask(layer, true, {false});
    EXPECT_FLOAT_EQ(pick(scene, 0.f, 0.f), 6.f);
    EXPECT_FLOAT_EQ(layer->getHit(), 6.f);

    setMask(layer, true, {false, false});
    EXPECT_FLOAT_EQ(pick(scene, 0.f, 0.f), 7.f);
    EXPECT_FLOAT_EQ(layer->getHit(), 7.f);

    // entries beyond the children are ignored
    setMask(layer, true, {true, false, true, true, false});
    EXPECT_FLOAT_EQ(pick(scene, 0.f, 0.f), 5.f);

    // a miss writes -1, and says so in the change list
    Thread::getCurrentChangeList()->clearAll();
    setMask(layer, true, {false, false, false, true});
    EXPECT_EQ(pick(scene, 0.f, 0.f), -1.f);
    EXPECT_EQ(layer->getHit(), -1.f);
    EXPECT_TRUE(changedWith(layer, Layer::HitFieldMask));

    // the mask for drawing doesn't touch picking
    setMask(layer, true, {});
    setMask(layer, false, {false, false, false});
    EXPECT_FLOAT_EQ(pick(scene, 0.f, 0.f), 5.f);
    EXPECT_EQ(pick(scene, 3.f, 0.f), -1.f);
    EXPECT_EQ(layer->getHit(), -1.f);

    subRefCP(scene);
}

namespace
{

class LayerScene : public CoresFrame
{
  protected:
    void SetUp(void) override
    {
        CoresFrame::SetUp();
        layer = Layer::create();
        keep(layer);
    }

    /// Red, green and blue side by side, and a fourth child far out of view.
    NodePtr threeAndAFar(void)
    {
        return layered(layer, {{translation(-1.f, 0.f), Red},
                               {translation(0.f, 0.f), Green},
                               {translation(1.f, 0.f), Blue},
                               {translation(50.f, 0.f), Red}});
    }

    /// The colours at the three places.
    std::vector<RGBA> colours(const std::vector<RGBA> &px)
    {
        return {at(px, -1.f, 0.f), at(px, 0.f, 0.f), at(px, 1.f, 0.f)};
    }

    LayerPtr layer;
};

class LayerFrame : public LayerScene, public ::testing::WithParamInterface<Drawer>
{
};

} // namespace

TEST_P(LayerFrame, VisibleHidesChildren)
{
    NodePtr scene = threeAndAFar();

    EXPECT_EQ(colours(show(scene, GetParam())), (std::vector<RGBA>{Red, Green, Blue}));

    // children beyond the end of the mask are drawn
    setMask(layer, false, {true, false});
    EXPECT_EQ(colours(show(scene, GetParam())), (std::vector<RGBA>{Red, Grey, Blue}));

    // entries beyond the children are ignored
    setMask(layer, false, {false, true, true, false, false, false});
    EXPECT_EQ(colours(show(scene, GetParam())), (std::vector<RGBA>{Grey, Green, Blue}));

    // the mask for picking doesn't touch drawing
    setMask(layer, false, {});
    setMask(layer, true, {false, false, false});
    EXPECT_EQ(colours(show(scene, GetParam())), (std::vector<RGBA>{Red, Green, Blue}));
}

INSTANTIATE_TEST_SUITE_P(Drawers, LayerFrame, ::testing::Values(WithRenderAction, WithDrawAction),
                         [](const ::testing::TestParamInfo<Drawer> &info) {
                             return info.param == WithRenderAction ? "RenderAction"
                                                                   : "DrawAction";
                         });

TEST_F(LayerScene, WhatTheMaskLetsThroughIsStillCulled)
{
    NodePtr       scene = threeAndAFar();
    StatCollector stats;
    action->setStatistics(&stats);

    // the far child is tested and culled when the mask lets it through
    auto culled = [&](std::initializer_list<bool> mask) {
        setMask(layer, false, mask);
        show(scene, WithRenderAction);
        return stats.getElem(DrawActionBase::statCulledNodes)->get();
    };
    EXPECT_EQ(culled({true, true, true, true}) - culled({true, true, true, false}), 1);

    action->setStatistics(NULL);
}
