// The volume frame of bench_VolumeFrame's dense case, rendered by VTK's GPU
// ray caster: the same voxels, transfer function, sphere, camera and
// window from VolumeFrameScene.h. Composite blending, linear
// interpolation, a fixed sample distance of one voxel, opacity corrected
// against the same reference distance. Each timed frame is Render followed
// by WaitForCompletion (glFinish), on the wall clock.
//
// VTK_BENCH_PNG=DIR writes the frame once to DIR/vtk_dense.png.
#include "VolumeFrameScene.h"

#include <vtkActor.h>
#include <vtkCamera.h>
#include <vtkColorTransferFunction.h>
#include <vtkGPUVolumeRayCastMapper.h>
#include <vtkImageData.h>
#include <vtkLight.h>
#include <vtkLightCollection.h>
#include <vtkNew.h>
#include <vtkPNGWriter.h>
#include <vtkPiecewiseFunction.h>
#include <vtkPolyDataMapper.h>
#include <vtkProperty.h>
#include <vtkRenderWindow.h>
#include <vtkRenderer.h>
#include <vtkSphereSource.h>
#include <vtkVolume.h>
#include <vtkVolumeProperty.h>
#include <vtkWindowToImageFilter.h>

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <string>

namespace
{

using namespace volframe;

void BM_VtkVolumeFrame_Dense(benchmark::State &state)
{
    // the voxels: x fastest, voxel centres from -1 + 1/Edge to 1 - 1/Edge
    static const std::vector<uint8_t> voxels = denseVolume();
    vtkNew<vtkImageData>              image;
    image->SetDimensions(Edge, Edge, Edge);
    image->SetSpacing(Cube / Edge, Cube / Edge, Cube / Edge);
    const double first = -Cube / 2.0 + Cube / (2.0 * Edge);
    image->SetOrigin(first, first, first);
    image->AllocateScalars(VTK_UNSIGNED_CHAR, 1);
    std::memcpy(image->GetScalarPointer(), voxels.data(), voxels.size());

    // the transfer function over the byte range
    vtkNew<vtkPiecewiseFunction> opacity;
    for(const OpacityPoint &p : Opacity)
        opacity->AddPoint(p.value * 255.0, p.opacity);
    vtkNew<vtkColorTransferFunction> colour;
    for(const ColourPoint &p : Colour)
        colour->AddRGBPoint(p.value * 255.0, p.r, p.g, p.b);

    vtkNew<vtkVolumeProperty> property;
    property->SetColor(colour);
    property->SetScalarOpacity(opacity);
    property->SetScalarOpacityUnitDistance(OpacityUnitWorld);
    property->SetInterpolationTypeToLinear();
    property->ShadeOff();

    vtkNew<vtkGPUVolumeRayCastMapper> mapper;
    mapper->SetInputData(image);
    mapper->SetBlendModeToComposite();
    mapper->AutoAdjustSampleDistancesOff();
    mapper->LockSampleDistanceToInputSpacingOff();
    mapper->SetUseJittering(0);
    mapper->SetSampleDistance(StepWorld);

    vtkNew<vtkVolume> volume;
    volume->SetMapper(mapper);
    volume->SetProperty(property);

    // the opaque sphere, about as many triangles as corvane's (5120)
    vtkNew<vtkSphereSource> sphere;
    sphere->SetCenter(SphereCentre[0], SphereCentre[1], SphereCentre[2]);
    sphere->SetRadius(SphereRadius);
    sphere->SetThetaResolution(64);
    sphere->SetPhiResolution(40);
    vtkNew<vtkPolyDataMapper> sphereMapper;
    sphereMapper->SetInputConnection(sphere->GetOutputPort());
    vtkNew<vtkActor> ball;
    ball->SetMapper(sphereMapper);
    ball->GetProperty()->SetColor(SphereDiffuse[0], SphereDiffuse[1], SphereDiffuse[2]);
    ball->GetProperty()->SetAmbient(0.0);
    ball->GetProperty()->SetDiffuse(1.0);
    ball->GetProperty()->SetSpecular(0.0);

    vtkNew<vtkRenderer> renderer;
    renderer->SetBackground(BackgroundColour[0], BackgroundColour[1], BackgroundColour[2]);
    renderer->AddVolume(volume);
    renderer->AddActor(ball);
    vtkNew<vtkLight> head;
    head->SetLightTypeToHeadlight();
    renderer->AddLight(head);
    renderer->AutomaticLightCreationOff();
    vtkCamera *camera = renderer->GetActiveCamera();
    camera->SetPosition(Eye[0], Eye[1], Eye[2]);
    camera->SetFocalPoint(At[0], At[1], At[2]);
    camera->SetViewUp(0.0, 1.0, 0.0);
    camera->SetViewAngle(FovYDeg);
    camera->SetClippingRange(NearPlane, FarPlane);

    vtkNew<vtkRenderWindow> window;
    window->SetOffScreenRendering(1);
    window->SetMultiSamples(0);
    window->SetSize(Width, Height);
    window->AddRenderer(renderer);

    // the first frames compile the shaders and upload the volume
    window->Render();
    window->Render();
    window->WaitForCompletion();
    if(!mapper->IsRenderSupported(window, property))
    {
        state.SkipWithError("vtkGPUVolumeRayCastMapper is not supported on this context");
        return;
    }
    if(const char *dir = std::getenv("VTK_BENCH_PNG"))
    {
        vtkNew<vtkWindowToImageFilter> grab;
        grab->SetInput(window);
        grab->ReadFrontBufferOff();
        grab->Update();
        vtkNew<vtkPNGWriter> writer;
        const std::string    file = std::string(dir) + "/vtk_dense.png";
        writer->SetFileName(file.c_str());
        writer->SetInputConnection(grab->GetOutputPort());
        writer->Write();
    }

    const double cpuStart = processSeconds();
    for(auto _ : state)
    {
        const auto start = std::chrono::steady_clock::now();
        window->Render();
        window->WaitForCompletion();
        const auto stop = std::chrono::steady_clock::now();
        state.SetIterationTime(std::chrono::duration<double>(stop - start).count());
    }
    state.counters["frame_cpu_ms"] = benchmark::Counter(
        1000.0 * (processSeconds() - cpuStart), benchmark::Counter::kAvgIterations);
}
BENCHMARK(BM_VtkVolumeFrame_Dense)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
