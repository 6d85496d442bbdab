#include <OpenSG/OSGSkydomeBackground.h>
#include <OpenSG/OSGCamera.h>
#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGDrawActionBase.h>
#include <OpenSG/OSGFieldContainerFactory.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGGLU.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGMatrix.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGState.h>
#include <OpenSG/OSGViewport.h>

OSG_BEGIN_NAMESPACE

SkydomeBackground::SkydomeBackground(void) :
    Inherited(), _madeMaterialId(0), _warnedNoMaterial(false)
{
}

SkydomeBackground::SkydomeBackground(const SkydomeBackground &source) :
    Inherited(source), _madeMaterialId(0), _warnedNoMaterial(false)
{
}

SkydomeBackground::~SkydomeBackground(void)
{
    releaseMadeMaterial();
}

void SkydomeBackground::initMethod(void)
{
}

// The material made for a texture is stored without a reference, so an
// application sees a material of count 0 that it may adopt with addRefCP
// (a MaterialGroup or a geometry doing so, too). Left at that, nobody would
// ever destroy it: the factory's store keeps it reachable, so the leak
// checker stays silent while every texture change and every background
// left behind one more material with a reference to its texture. So the
// background remembers which material it made and destroys it when it
// makes the next one or dies itself, unless someone took a reference to it
// by then: that holder owns it now. The id, not the pointer, is remembered:
// ids are never reused, and the factory answers NullFC for a material that
// a holder has destroyed meanwhile.
void SkydomeBackground::releaseMadeMaterial(void)
{
    if(_madeMaterialId == 0)
        return;

    FieldContainerPtr made = FieldContainerFactory::the()->getContainer(_madeMaterialId);
    _madeMaterialId        = 0;

    if(made != NullFC && getRefCount(made) == 0)
    {
        addRefCP(made);
        subRefCP(made);
    }
}

void SkydomeBackground::changed(BitVector whichField, UInt32 origin)
{
    if((whichField & LatlongTextureFieldMask) && getLatlongTexture() != NullFC)
    {
        ChunkMaterialPtr material = ChunkMaterial::create();

        beginEditCP(material, ChunkMaterial::ChunksFieldMask);
        material->addChunk(getLatlongTexture());
        endEditCP(material, ChunkMaterial::ChunksFieldMask);

        // the old material goes only now: it may hold the last reference
        // of the very texture the new one just took
        releaseMadeMaterial();

        _sfMaterial.setValue(material);
        _madeMaterialId = getContainerId(material);
    }

    Inherited::changed(whichField, origin);
}

void SkydomeBackground::dump(UInt32, const BitVector) const
{
    SLOG << "Dump SkydomeBackground NI" << std::endl;
}

void SkydomeBackground::clear(DrawActionBase *action, Viewport *port)
{
    MaterialPtr material = getMaterial();

    if(material == NullFC)
    {
        // without a texture or a material of the application there is no
        // sky to draw: the port is still cleared, and that is said once
        if(!_warnedNoMaterial)
        {
            SWARNING << "SkydomeBackground::clear: no material, the sky is not drawn"
                     << std::endl;
            _warnedNoMaterial = true;
        }
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
        return;
    }

    Camera      *camera = action->getCamera();
    const UInt32 width  = port->getPixelWidth();
    const UInt32 height = port->getPixelHeight();

    glPushAttrib(GL_POLYGON_BIT | GL_LIGHTING_BIT | GL_DEPTH_BUFFER_BIT);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);

    glDisable(GL_LIGHTING);
    glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
    glDisable(GL_DEPTH_TEST);

    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();

    // the camera's turn (and the beacon's) without any translation: the
    // dome goes along with the viewer and so stays infinitely far away
    Matrix modelView, viewing;
    camera->getProjectionTranslation(modelView, width, height);
    camera->getViewing(viewing, width, height);
    modelView.mult(viewing);

    if(getBeacon() != NullFC)
        modelView.mult(getBeacon()->getToWorld());

    modelView[3][0] = 0.f;
    modelView[3][1] = 0.f;
    modelView[3][2] = 0.f;
    glLoadMatrixf(modelView.getValues());

    // the quadric's texture coordinates in latitude-longitude orientation,
    // seen from the inside
    glScalef(-1.f, 1.f, 1.f);
    glRotatef(-90.f, 1.f, 0.f, 0.f);
    glRotatef(90.f, 0.f, 0.f, 1.f);

    // every fragment of the sphere gets the same depth
    Matrix projection;
    camera->getProjection(projection, width, height);

    glMatrixMode(GL_PROJECTION);
    glPushMatrix();
    glLoadIdentity();
    glTranslatef(0.f, 0.f, 0.5f);
    glScalef(1.f, 1.f, 0.f);
    glMultMatrixf(projection.getValues());

    // one state for activation and deactivation, held while in use, so no
    // state is left behind per frame
    StatePtr state = material->makeState();
    addRefCP(state);
    state->activate(action);

    // the material may have changed the polygon mode
    glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);

    GLUquadric *quadric = gluNewQuadric();
    gluQuadricTexture(quadric, GL_TRUE);
    gluQuadricOrientation(quadric, GLU_OUTSIDE);
    gluQuadricNormals(quadric, GLU_SMOOTH);
    gluSphere(quadric, 1.0, GLint(getSphereRes()), GLint(getSphereRes()));
    gluDeleteQuadric(quadric);

    state->deactivate(action);
    subRefCP(state);

    glClear(GL_DEPTH_BUFFER_BIT);

    glPopMatrix();
    glMatrixMode(GL_MODELVIEW);
    glPopMatrix();
    glPopAttrib();
    glColor3f(1.f, 1.f, 1.f);
}

OSG_END_NAMESPACE
