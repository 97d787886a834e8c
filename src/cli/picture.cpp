#include "cli/picture.h"

#include "layout/picture_job.h"

#include <array>
#include <dlfcn.h>
#include <filesystem>
#include <system_error>

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

bool IsPictureExtension(std::string_view lower_case_extension)
{
    return lower_case_extension == ".png" || lower_case_extension == ".svg" || lower_case_extension == ".pdf";
}

Status WritePicture(const GlobalBlock& g, const ProcessOptions& options, const std::string& path)
{
    static const Result<PictureFunction> write = LoadModule();
    if (!write) return write.error();
    SceneOptions scene_options;
    scene_options.row = options.row - 1;
    if (options.range_ppm) std::tie(scene_options.left_ppm, scene_options.right_ppm) = *options.range_ppm;
    const SpectrumScene scene = MakeScene(g.Slots[0], g.settings, scene_options);
    PictureJob job;
    job.scene = &scene;
    job.path = path;
    job.width = options.width;
    job.height = options.height;
    std::array<char, 512> message{};
    if ((*write)(&job, message.data(), message.size()) == 0) return {};
    return PictureError(message.data());
}

} // namespace nmr
