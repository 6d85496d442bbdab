#include <OpenSG/DropletUtils.h>

#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGGeoFunctions.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGMaterialGroup.h>
#include <OpenSG/OSGPerspectiveCamera.h>
#include <OpenSG/OSGSimpleGeometry.h>
#include <OpenSG/OSGSolidBackground.h>
#include <OpenSG/OSGTransform.h>

OSG_USING_NAMESPACE

DropletUtils *DropletUtils::the_ = NULL;

DropletUtils::DropletUtils(void) : _window(NullFC), _action(NULL)
{
}

DropletUtils::~DropletUtils(void)
{
    the_ = NULL;
}

DropletUtils *DropletUtils::the(void)
{
    if(the_ == NULL)
        the_ = new DropletUtils;
    return the_;
}

void DropletUtils::updateWindowState(WindowPtr window, RenderActionBase *action)
{
    _window = window;
    _action = action;
}

SHLChunkPtr DropletUtils::createShader(std::string vertex, std::string fragment)
{
    SHLChunkPtr shader = SHLChunk::create();
    beginEditCP(shader);
    shader->setVertexProgram(vertex);
    shader->setFragmentProgram(fragment);
    endEditCP(shader);
    return shader;
}

NodePtr DropletUtils::createPlane(float size, std::vector<StateChunkPtr> *chunks)
{
    ChunkMaterialPtr material = ChunkMaterial::create();
    beginEditCP(material);
    if(chunks != NULL)
    {
        for(size_t i = 0; i < chunks->size(); ++i)
            material->addChunk((*chunks)[i], -2);
    }
    endEditCP(material);

    GeometryPtr plane = makePlaneGeo(size, size, 1, 1);
    beginEditCP(plane, Geometry::MaterialFieldMask);
    plane->setMaterial(material);
    endEditCP(plane, Geometry::MaterialFieldMask);

    NodePtr planeNode = Node::create();
    beginEditCP(planeNode);
    planeNode->setCore(plane);
    endEditCP(planeNode);

    return planeNode;
}

NodePtr DropletUtils::createMaterialGroup(MaterialPtr material, NodePtr child)
{
    MaterialGroupPtr materialGroup = MaterialGroup::create();
    beginEditCP(materialGroup);
    materialGroup->setMaterial(material);
    endEditCP(materialGroup);

    NodePtr node = Node::create();
    beginEditCP(node);
    node->setCore(materialGroup);
    node->addChild(child);
    endEditCP(node);

    return node;
}

NodePtr DropletUtils::createFBOScene(std::vector<StateChunkPtr> *chunks)
{
    NodePtr group = Node::create();
    beginEditCP(group);
    group->setCore(Group::create());
    group->addChild(createPlane(1.f, chunks));
    endEditCP(group);

    return group;
}

FBOViewportPtr DropletUtils::createFBOViewport(NodePtr root, TextureChunkPtr target,
                                               BackgroundPtr background)
{
    if(target == NullFC || target->getImage() == NullFC)
    {
        SWARNING << "DropletUtils::createFBOViewport: the target has no image to take "
                    "its size from"
                 << std::endl;
        return NullFC;
    }

    const Int32 w = target->getImage()->getWidth();
    const Int32 h = target->getImage()->getHeight();

    // The camera stands one unit in front of the plane.
    TransformPtr xform = Transform::create();
    Matrix       m;
    m.setIdentity();
    m.setTranslate(0.f, 0.f, 1.f);
    beginEditCP(xform);
    xform->setMatrix(m);
    endEditCP(xform);

    NodePtr beacon = Node::create();
    beginEditCP(beacon);
    beacon->setCore(xform);
    endEditCP(beacon);

    // 2 atan(0.5): the unit plane just fills the view.
    PerspectiveCameraPtr camera = PerspectiveCamera::create();
    beginEditCP(camera);
    camera->setAspect(1.f);
    camera->setNear(0.01f);
    camera->setFar(100.f);
    camera->setFov(0.9272952f);
    camera->setBeacon(beacon);
    endEditCP(camera);

    if(background == NullFC)
    {
        SolidBackgroundPtr grey = SolidBackground::create();
        beginEditCP(grey);
        grey->setColor(Color3f(0.5f, 0.5f, 0.5f));
        endEditCP(grey);
        background = grey;
    }

    FBOViewportPtr viewport = FBOViewport::create();
    beginEditCP(viewport);
    viewport->setLeft(0.f);
    viewport->setRight(Real32(w - 1));
    viewport->setBottom(0.f);
    viewport->setTop(Real32(h - 1));
    viewport->setStorageWidth(w);
    viewport->setStorageHeight(h);
    viewport->setCamera(camera);
    viewport->setBackground(background);
    viewport->setParent(_window);
    viewport->getTextures().push_back(target);
    viewport->setRoot(root);
    endEditCP(viewport);

    addRefCP(beacon);
    addRefCP(camera);
    addRefCP(background);

    return viewport;
}

void DropletUtils::releaseFBOViewport(FBOViewportPtr viewport)
{
    if(viewport == NullFC)
        return;

    CameraPtr     camera     = viewport->getCamera();
    BackgroundPtr background = viewport->getBackground();

    if(camera != NullFC)
    {
        NodePtr beacon = camera->getBeacon();
        if(beacon != NullFC)
            subRefCP(beacon);
        subRefCP(camera);
    }
    if(background != NullFC)
        subRefCP(background);

    subRefCP(viewport);
}

void DropletUtils::collectGeometry(NodePtr node, std::vector<GeometryPtr> &result)
{
    if(node == NullFC)
        return;

    NodeCorePtr core = node->getCore();

    if(core != NullFC)
    {
        for(const FieldContainerType *type = &core->getType(); type != NULL;
            type = type->getParent())
        {
            if(type == &Geometry::getClassType())
            {
                result.push_back(GeometryPtr::dcast(core));
                break;
            }
        }
    }

    for(UInt32 i = 0; i < node->getNChildren(); ++i)
        collectGeometry(node->getChild(i), result);
}

void DropletUtils::calcTangents(NodePtr node, int texUnit)
{
    std::vector<GeometryPtr> geometries;
    collectGeometry(node, geometries);

    Int32 destination = Geometry::TexCoords1FieldId;

    if(texUnit == 2)
        destination = Geometry::TexCoords2FieldId;
    else if(texUnit == 3)
        destination = Geometry::TexCoords3FieldId;

    for(size_t i = 0; i < geometries.size(); ++i)
    {
        beginEditCP(geometries[i]);
        calcVertexTangents(geometries[i], 0, destination, -1);
        endEditCP(geometries[i]);
    }
}
