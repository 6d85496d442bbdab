#include <OpenSG/OSGDisplayFilterForeground.h>

#include <OpenSG/OSGDrawAction.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGGeoPLengthsUI32.h>
#include <OpenSG/OSGGeoPTypesUI8.h>
#include <OpenSG/OSGGeoIndicesUI32.h>
#include <OpenSG/OSGGeoPositions3f.h>
#include <OpenSG/OSGGeoTexCoords2f.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGMatrixCamera.h>
#include <OpenSG/OSGMatrixUtility.h>
#include <OpenSG/OSGPassiveBackground.h>
#include <OpenSG/OSGRenderActionBase.h>
#include <OpenSG/OSGTextureGrabBackground.h>
#include <OpenSG/OSGWindow.h>

OSG_BEGIN_NAMESPACE

// --- DisplayFilterGroup -----------------------------------------------------------

DisplayFilterForeground::DisplayFilterGroup::DisplayFilterGroup(bool readback,
                                                                std::vector<ViewportPtr> &ports)
    : _port(NullFC), _root(NullFC), _transform(NullFC), _geometry(NullFC),
      _material(NullFC), _texture(NullFC)
{
    // x and y from 0 to 1 fill the viewport, whatever its size.
    Matrix projection;
    MatrixOrthogonal(projection, 0.f, 1.f, 0.f, 1.f, -1.f, 1.f);

    MatrixCameraPtr camera = MatrixCamera::create();
    beginEditCP(camera);
    camera->setNear(-1.f);
    camera->setFar(1.f);
    camera->setProjectionMatrix(projection);
    camera->setModelviewMatrix(Matrix());
    endEditCP(camera);

    _material = ChunkMaterial::create();

    BackgroundPtr background;

    if(readback)
    {
        // A 1 x 1 image grows to the port's size at the first grab.
        ImagePtr image = Image::create();
        image->set(GL_RGB, 1, 1);

        _texture = TextureChunk::create();
        beginEditCP(_texture);
        _texture->setImage(image);
        _texture->setWrapS(GL_CLAMP_TO_EDGE);
        _texture->setWrapT(GL_CLAMP_TO_EDGE);
        _texture->setMinFilter(GL_LINEAR);
        _texture->setMagFilter(GL_LINEAR);
        _texture->setScale(false);
        _texture->setEnvMode(GL_REPLACE);
        _texture->setNPOTMatrixScale(TextureChunk::NPotTexScale_TT);
        endEditCP(_texture);

        TextureGrabBackgroundPtr grab = TextureGrabBackground::create();
        beginEditCP(grab);
        grab->setTexture(_texture);
        grab->setColor(Color3f(0.f, 0.f, 0.f));
        grab->setAlpha(1.f);
        grab->setDepth(1.f);
        grab->setAutoResize(true);
        endEditCP(grab);

        background = grab;

        beginEditCP(_material, ChunkMaterial::ChunksFieldMask);
        _material->addChunk(_texture);
        endEditCP(_material, ChunkMaterial::ChunksFieldMask);
    }
    else
    {
        background = PassiveBackground::create();
    }

    _geometry = Geometry::create();
    beginEditCP(_geometry);
    _geometry->setMaterial(_material);
    endEditCP(_geometry);

    NodePtr geoNode = Node::create();
    beginEditCP(geoNode);
    geoNode->setCore(_geometry);
    endEditCP(geoNode);

    _transform = Transform::create();

    _root = Node::create();
    addRefCP(_root);
    beginEditCP(_root);
    _root->setCore(_transform);
    _root->addChild(geoNode);
    endEditCP(_root);

    _port = Viewport::create();
    addRefCP(_port);
    beginEditCP(_port);
    _port->setCamera(camera);
    _port->setBackground(background);
    _port->setRoot(_root);
    endEditCP(_port);

    // The viewport's camera and background fields count nothing: the
    // references made here are the group's and go with it.
    addRefCP(camera);
    addRefCP(background);

    ports.push_back(_port);

    createGrid(2, 2);
}

DisplayFilterForeground::DisplayFilterGroup::~DisplayFilterGroup(void)
{
    CameraPtr     camera     = _port->getCamera();
    BackgroundPtr background = _port->getBackground();

    subRefCP(_port);
    subRefCP(_root);
    subRefCP(camera);
    subRefCP(background);
}

TextureChunkPtr DisplayFilterForeground::DisplayFilterGroup::getTexture(void)
{
    return _texture;
}

GeometryPtr DisplayFilterForeground::DisplayFilterGroup::getGeometry(void)
{
    return _geometry;
}

ChunkMaterialPtr DisplayFilterForeground::DisplayFilterGroup::getMaterial(void)
{
    return _material;
}

TransformPtr DisplayFilterForeground::DisplayFilterGroup::getTransform(void)
{
    return _transform;
}

ViewportPtr DisplayFilterForeground::DisplayFilterGroup::getViewport(void)
{
    return _port;
}

void DisplayFilterForeground::DisplayFilterGroup::createGrid(UInt32 width, UInt32 height)
{
    width  = osgMax(width, UInt32(2));
    height = osgMax(height, UInt32(2));

    GeoPTypesUI8Ptr    types     = GeoPTypesUI8::create();
    GeoPLengthsUI32Ptr lengths   = GeoPLengthsUI32::create();
    GeoIndicesUI32Ptr  indices   = GeoIndicesUI32::create();
    GeoPositions3fPtr  positions = GeoPositions3f::create();
    GeoTexCoords2fPtr  texCoords = GeoTexCoords2f::create();

    beginEditCP(types);
    beginEditCP(lengths);
    beginEditCP(indices);
    beginEditCP(positions);
    beginEditCP(texCoords);

    for(UInt32 y = 0; y < height; ++y)
    {
        for(UInt32 x = 0; x < width; ++x)
        {
            const Real32 u = Real32(x) / Real32(width - 1);
            const Real32 v = Real32(y) / Real32(height - 1);

            positions->getField().push_back(Pnt3f(u, v, 0.f));
            texCoords->getField().push_back(Vec2f(u, v));
        }
    }

    // One strip per row of cells, upper vertex first, so the grid faces +z.
    for(UInt32 y = 0; y + 1 < height; ++y)
    {
        for(UInt32 x = 0; x < width; ++x)
        {
            indices->getField().push_back((y + 1) * width + x);
            indices->getField().push_back(y * width + x);
        }

        types->getField().push_back(GL_TRIANGLE_STRIP);
        lengths->getField().push_back(2 * width);
    }

    endEditCP(texCoords);
    endEditCP(positions);
    endEditCP(indices);
    endEditCP(lengths);
    endEditCP(types);

    // The old properties stay alive until all are replaced: the geometry
    // looks at its remaining ones while each new one comes in.
    FieldContainerPtr old[5] = {_geometry->getTypes(), _geometry->getLengths(),
                                _geometry->getIndices(), _geometry->getPositions(),
                                _geometry->getTexCoords()};

    for(UInt32 i = 0; i < 5; ++i)
        if(old[i] != NullFC)
            addRefCP(old[i]);

    beginEditCP(_geometry);
    _geometry->setTypes(types);
    _geometry->setLengths(lengths);
    _geometry->setIndices(indices);
    _geometry->setPositions(positions);
    _geometry->setTexCoords(texCoords);
    endEditCP(_geometry);

    for(UInt32 i = 0; i < 5; ++i)
        if(old[i] != NullFC)
            subRefCP(old[i]);
}

// --- DisplayFilterForeground ------------------------------------------------------

DisplayFilterForeground::DisplayFilterForeground(void)
    : Inherited(), _built(false), _hasNonPowTwoTex(true)
{
}

DisplayFilterForeground::DisplayFilterForeground(const DisplayFilterForeground &source)
    : Inherited(source), _built(false), _hasNonPowTwoTex(true)
{
}

DisplayFilterForeground::~DisplayFilterForeground(void)
{
}

void DisplayFilterForeground::initMethod(void)
{
}

void DisplayFilterForeground::onDestroy(void)
{
    clearGroups();

    Inherited::onDestroy();
}

void DisplayFilterForeground::changed(BitVector whichField, UInt32 origin)
{
    if(whichField & FilterFieldMask)
        clearGroups();

    Inherited::changed(whichField, origin);
}

void DisplayFilterForeground::dump(UInt32, const BitVector) const
{
    SLOG << "Dump DisplayFilterForeground NI" << std::endl;
}

void DisplayFilterForeground::clearGroups(void)
{
    for(std::map<std::string, DisplayFilterGroup *>::iterator it = _group.begin();
        it != _group.end(); ++it)
    {
        delete it->second;
    }

    _group.clear();
    _port.clear();
    _changedState.clear();
    _builtFilters.clear();
    _builtEnabled.clear();
    _built = false;
}

DisplayFilterForeground::DisplayFilterGroup *
DisplayFilterForeground::findReadbackGroup(const std::string &name)
{
    std::map<std::string, DisplayFilterGroup *>::iterator it = _group.find(name);

    if(it != _group.end())
        return it->second;

    DisplayFilterGroup *group = new DisplayFilterGroup(true, _port);
    _group[name]              = group;

    return group;
}

DisplayFilterForeground::DisplayFilterGroup *
DisplayFilterForeground::findOverlayGroup(const std::string &name)
{
    // Overlay groups live under their own key, apart from read-back groups
    // of the same name.
    const std::string key = name + "_readback";

    std::map<std::string, DisplayFilterGroup *>::iterator it = _group.find(key);

    if(it != _group.end())
        return it->second;

    DisplayFilterGroup *group = new DisplayFilterGroup(false, _port);
    _group[key]               = group;

    return group;
}

bool DisplayFilterForeground::buildIsCurrent(void) const
{
    if(!_built || _builtFilters.size() != getFilter().size())
        return false;

    for(UInt32 i = 0; i < getFilter().size(); ++i)
    {
        DisplayFilter *f = getFilter(i).getCPtr();

        if(f != _builtFilters[i])
            return false;

        if(f != NULL && f->getEnabled() != _builtEnabled[i])
            return false;
    }

    return true;
}

void DisplayFilterForeground::draw(DrawActionBase *action, Viewport *port)
{
    if(!getActive() || action == NULL || port == NULL)
        return;

    WindowPtr window = port->getParent();

    if(window == NullFC && action->getWindow() != NULL)
        window = WindowPtr(action->getWindow());

    glPushAttrib(GL_ALL_ATTRIB_BITS);
    glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);

    // Built once; a new filter list, or a filter switched on or off, builds
    // all of them again.
    if(!buildIsCurrent())
    {
        clearGroups();

        const UInt32 n = getFilter().size();

        _changedState.resize(n);
        _builtFilters.resize(n);
        _builtEnabled.resize(n);

        for(UInt32 i = 0; i < n; ++i)
        {
            DisplayFilter *f = getFilter(i).getCPtr();

            _builtFilters[i] = f;
            _builtEnabled[i] = f != NULL && f->getEnabled();
            _changedState[i] = f != NULL ? f->getChanged() : 0;

            if(f != NULL && f->getEnabled())
                f->createFilter(this, port);
        }

        _built = true;
    }

    for(UInt32 i = 0; i < _port.size(); ++i)
    {
        _port[i]->setLeft(port->getLeft());
        _port[i]->setBottom(port->getBottom());
        _port[i]->setRight(port->getRight());
        _port[i]->setTop(port->getTop());
    }

    // The texture chunk corrects non-power-of-two grabs itself.
    _hasNonPowTwoTex = true;

    for(UInt32 i = 0; i < getFilter().size(); ++i)
    {
        DisplayFilter *f = getFilter(i).getCPtr();

        if(f != NULL && f->getEnabled())
            f->updateFilter(port);
    }

    RenderActionBase *renderAction = dynamic_cast<RenderActionBase *>(action);
    DrawAction       *drawAction   = dynamic_cast<DrawAction *>(action);

    for(UInt32 i = 0; i < _port.size(); ++i)
    {
        _port[i]->setParent(window);

        if(renderAction != NULL)
            _port[i]->render(renderAction);
        else if(drawAction != NULL)
            _port[i]->draw(drawAction);

        _port[i]->setParent(NullFC);
    }

    glPopAttrib();
}

OSG_END_NAMESPACE
