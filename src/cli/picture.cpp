#include "cli/picture.h"

#include "core/file_layer.h"
#include "layout/picture_job.h"
#include "layout/spectrum_scene.h"

#include <dlfcn.h>
#include <filesystem>
#include <system_error>
#include <tuple>

namespace nmr {
namespace {

// The module lies beside the program.
std::filesystem::path ModulePath()
{
    std::error_code error;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
    return (error ? std::filesystem::path(".") : program.parent_path()) / kPictureModule;
}

Error PictureError(std::string text)
{
    return {ErrorCode::unwritable, "WritePicture/cli", std::move(text)};
}

Result<PictureFunction> LoadModule()
{
    void* module = dlopen(ModulePath().c_str(), RTLD_NOW | RTLD_LOCAL); // stays loaded until the program ends
    if (module == nullptr) return PictureError(dlerror());
    auto* entry = reinterpret_cast<PictureFunction>(dlsym(module, kPictureEntry));
    if (entry == nullptr) return PictureError("the picture module has no entry");
    return entry;
}

} // namespace

bool IsPicture(std::string_view path)
{
    return PictureFormatOf(path).has_value();
}

Status CheckPicture(const ProcessOptions& options, std::string_view path)
{
    return CheckPictureSize(options.size, *PictureFormatOf(path));
}

Status WritePicture(const GlobalBlock& g, const ProcessOptions& options, const std::string& path)
{
    static const Result<PictureFunction> make = LoadModule();
    if (!make) return make.error();
    SceneOptions scene_options;
    scene_options.row = options.row - 1;
    scene_options.paper = true;
    if (options.range_ppm) std::tie(scene_options.left_ppm, scene_options.right_ppm) = *options.range_ppm;
    const SpectrumScene scene = MakeScene(g.Slots[0], g.settings, scene_options);
    PictureJob job;
    job.draw = [&scene](Canvas& canvas, const RectD& rect) { DrawSpectrumScene(canvas, rect, scene); };
    job.format = *PictureFormatOf(path);
    job.size = options.size;
    job.title = scene.title;
    std::string answer;
    if ((*make)(&job, &answer) != 0) return PictureError(answer);
    return WriteWholeFile(path, answer);
}

} // namespace nmr
