#include <OpenSG/DropletPlacer.h>
#include <OpenSG/DropletUtils.h>

#include <OpenSG/OSGBlendChunk.h>
#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGDepthChunk.h>
#include <OpenSG/OSGGeoPropColors.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGMaterialChunk.h>
#include <OpenSG/OSGPassiveBackground.h>
#include <OpenSG/OSGSimpleGeometry.h>
#include <OpenSG/OSGSolidBackground.h>
#include <OpenSG/OSGTransform.h>

#include <algorithm>
#include <cmath>

OSG_USING_NAMESPACE

DropletPlacer::DropletPlacer(TextureChunkPtr target)
    : _fboViewport(NullFC), _target(target), _shapeMap(NullFC), _dirty(false)
{
    // The viewport sets the shape for its contact angle right after.
    rebuildShapeMap(89.999f);
    clear();
}

DropletPlacer::~DropletPlacer(void)
{
    if(_fboViewport != NullFC)
    {
        NodePtr root = _fboViewport->getRoot();
        DropletUtils::releaseFBOViewport(_fboViewport);
        if(root != NullFC)
            subRefCP(root);
    }
    if(_shapeMap != NullFC)
        subRefCP(_shapeMap);
}

void DropletPlacer::clear(void)
{
    _sources.clear();
    _dirty = true;
}

void DropletPlacer::addSource(DropletSource source)
{
    _sources.push_back(source);
    _dirty = true;
}

float DropletPlacer::calcDropletHeight(float radius, float y)
{
    const float c = std::min(radius, 1.f);
    return (y + std::sqrt(1.f - (1.f - y * y) * c * c)) / std::sqrt(1.f - y * y);
}

void DropletPlacer::rebuildShapeMap(float contactAngle)
{
    // Only the magnitude of the tangent counts: an angle above a right
    // angle shapes the droplet like its supplement.
    const float t = std::tan(contactAngle);
    const float y = -1.f / std::sqrt(t * t + 1.f);

    if(_shapeMap == NullFC)
    {
        _shapeMap = TextureChunk::create();
        addRefCP(_shapeMap);
    }

    const int          size = ShapeMapSize;
    std::vector<UInt8> texels(size * size * 3);

    for(int j = 0; j < size; ++j)
    {
        for(int i = 0; i < size; ++i)
        {
            const float u      = 2.f * (float(i) + 0.5f) * 0.0078125f - 1.f;
            const float v      = 2.f * (float(j) + 0.5f) * 0.0078125f - 1.f;
            const float radius = std::sqrt(u * u + v * v);
            UInt8      *p      = &texels[(j * size + i) * 3];

            // y is never positive, so the height stays within 0..1; only a
            // flat angle (0/0 at the foot) or one that is not a number
            // leaves that range, and gives no droplet.
            const float height = calcDropletHeight(radius, y);
            p[0]               = 0;
            p[1]               = 0;
            p[2]               = height >= 0.f && height <= 1.f ? UInt8(height * 255.f) : 0;
        }
    }

    ImagePtr image = Image::create();
    beginEditCP(image);
    image->set(GL_RGB, size, size, 1, 1, 1, 0.0, &texels[0], GL_UNSIGNED_BYTE);
    endEditCP(image);

    beginEditCP(_shapeMap);
    _shapeMap->setEnvMode(GL_MODULATE);
    _shapeMap->setMinFilter(GL_LINEAR);
    _shapeMap->setMagFilter(GL_LINEAR);
    _shapeMap->setWrapS(GL_CLAMP_TO_EDGE);
    _shapeMap->setWrapT(GL_CLAMP_TO_EDGE);
    _shapeMap->setTarget(GL_TEXTURE_2D);
    _shapeMap->setInternalFormat(GL_RGBA8);
    _shapeMap->setImage(image);
    endEditCP(_shapeMap);
}

NodePtr DropletPlacer::buildGeoFromSources(void)
{
    NodePtr group = Node::create();
    beginEditCP(group);
    group->setCore(Group::create());
    endEditCP(group);

    for(size_t i = 0; i < _sources.size(); ++i)
    {
        const DropletSource &s = _sources[i];

        // The quad's centre lands on the source in a [-0.5, 0.5] square.
        TransformPtr xform = Transform::create();
        Matrix       m;
        m.setIdentity();
        m.setScale(s.size, s.size, 1.f);
        m.setTranslate(s.x - 0.5f, s.y - 0.5f, 0.f);
        beginEditCP(xform);
        xform->setMatrix(m);
        endEditCP(xform);

        GeoColors3fPtr colors = GeoColors3f::create();
        beginEditCP(colors);
        for(int k = 0; k < 4; ++k)
            colors->getField().push_back(Color3f(0.f, 0.f, s.volume));
        endEditCP(colors);

        GeometryPtr quad = makePlaneGeo(1, 1, 1, 1);
        beginEditCP(quad);
        quad->setColors(colors);
        endEditCP(quad);

        NodePtr quadNode = Node::create();
        beginEditCP(quadNode);
        quadNode->setCore(quad);
        endEditCP(quadNode);

        NodePtr xformNode = Node::create();
        beginEditCP(xformNode);
        xformNode->setCore(xform);
        xformNode->addChild(quadNode);
        endEditCP(xformNode);

        beginEditCP(group, Node::ChildrenFieldMask);
        group->addChild(xformNode);
        endEditCP(group, Node::ChildrenFieldMask);
    }

    return group;
}

void DropletPlacer::rebuildScene(bool clear)
{
    // Vertex colour modulates the shape, and blending adds volume * height
    // to the blue channel, leaving the velocities alone.
    MaterialChunkPtr unlit = MaterialChunk::create();
    beginEditCP(unlit);
    unlit->setLit(false);
    endEditCP(unlit);

    DepthChunkPtr noDepth = DepthChunk::create();
    beginEditCP(noDepth);
    noDepth->setEnable(false);
    endEditCP(noDepth);

    BlendChunkPtr add = BlendChunk::create();
    beginEditCP(add);
    add->setSrcFactor(GL_ONE);
    add->setDestFactor(GL_ONE);
    endEditCP(add);

    ChunkMaterialPtr material = ChunkMaterial::create();
    beginEditCP(material);
    material->addChunk(unlit, -2);
    material->addChunk(_shapeMap, -2);
    material->addChunk(noDepth, -2);
    material->addChunk(add, -2);
    endEditCP(material);

    NodePtr root = DropletUtils::the()->createMaterialGroup(material, buildGeoFromSources());
    addRefCP(root);

    if(_fboViewport != NullFC)
    {
        NodePtr old = _fboViewport->getRoot();
        beginEditCP(_fboViewport, Viewport::RootFieldMask);
        _fboViewport->setRoot(root);
        endEditCP(_fboViewport, Viewport::RootFieldMask);
        if(old != NullFC)
            subRefCP(old);
    }
    else
    {
        _fboViewport = DropletUtils::the()->createFBOViewport(root, _target, NullFC);
        if(_fboViewport == NullFC)
        {
            subRefCP(root);
            return;
        }
        addRefCP(_fboViewport);
    }

    // A black clear wipes the map first; a passive one keeps what is there.
    BackgroundPtr old = _fboViewport->getBackground();
    BackgroundPtr background;

    if(clear)
    {
        SolidBackgroundPtr black = SolidBackgroundPtr::dcast(old);
        if(black == NullFC)
            black = SolidBackground::create();
        beginEditCP(black);
        black->setColor(Color3f(0.f, 0.f, 0.f));
        endEditCP(black);
        background = black;
    }
    else
    {
        background = PassiveBackgroundPtr::dcast(old);
        if(background == NullFC)
            background = PassiveBackground::create();
    }

    if(background != old)
    {
        addRefCP(background);
        beginEditCP(_fboViewport, Viewport::BackgroundFieldMask);
        _fboViewport->setBackground(background);
        endEditCP(_fboViewport, Viewport::BackgroundFieldMask);
        if(old != NullFC)
            subRefCP(old);
    }

    _dirty = false;
}

void DropletPlacer::render(bool clear)
{
    const size_t n = _sources.size();

    if(n == 0 && !clear)
        return;

    if((n > 0 && (_dirty || !clear)) || (n == 0 && _dirty))
        rebuildScene(clear);

    _dirty = false;

    // Without sources, a clear with nothing changed reuses the pass of an
    // earlier call; before the first one there is none.
    if(_fboViewport != NullFC)
        _fboViewport->render(DropletUtils::the()->getAction());
}
