// camera <data folder> <scratch folder>: a camera application over the C++ front. It reads its settings by type, says
// what is wrong with them, changes some, and saves the file in the form that it had.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "mox_xmlApi/mox_xmlApi.hpp"

namespace fs = std::filesystem;
namespace {

struct Camera {
    std::string model;
    std::int32_t exposure = 1000;  // microseconds
    double gain = 1.0;
    bool isAutomatic = true;
    std::vector<std::uint8_t> toneCurve;
};

// What is missing gets its default; what is there but wrong ends the program.
template <class T>
T Setting(const mox::Profile& settings, const char* key, T fallback) {
    mox::Problem problem;
    T value = settings.getOr<T>("Camera", key, std::move(fallback), &problem);
    if (problem && problem.reason != mox::Reason::NoSuchKey) throw std::runtime_error(problem.toString());
    return value;
}

Camera Read(const mox::Profile& settings) {
    Camera camera;
    camera.model = Setting(settings, "Model", camera.model);
    camera.exposure = Setting(settings, "Exposure", camera.exposure);
    camera.gain = Setting(settings, "Gain", camera.gain);
    camera.isAutomatic = Setting(settings, "AutoExposure", camera.isAutomatic);
    camera.toneCurve = Setting(settings, "ToneCurve", camera.toneCurve);
    return camera;
}

void Write(mox::Profile& settings, const Camera& camera) {
    mox::Problem problem;
    const bool isWritten = settings.set("Camera", "Exposure", camera.exposure, &problem) &&
                           settings.set("Camera", "Gain", camera.gain, &problem) &&
                           settings.set("Camera", "AutoExposure", camera.isAutomatic, &problem) &&
                           settings.set("Camera", "ToneCurve", camera.toneCurve, &problem) &&
                           settings.set("Counters", "Images", std::uint64_t{5000000000}, &problem);
    if (!isWritten) throw std::runtime_error(problem.toString());
}

void Print(const Camera& camera) {
    std::printf("%s: %d us, gain %g, %s, %zu steps\n", camera.model.c_str(), camera.exposure, camera.gain,
                camera.isAutomatic ? "automatic" : "manual", camera.toneCurve.size());
}

void Run(const fs::path& path) {
    mox::Problem problem;
    auto settings = mox::Profile::open(path, &problem);
    if (!settings) throw std::runtime_error(problem.toString());
    Camera camera = Read(*settings);
    Print(camera);

    if (!settings->set("Camera", "Operator", "J\xC3\xBCrgen",
                       &problem))  // the file is narrow: no room for this
        std::printf("%s\n", problem.toString().c_str());
    camera.exposure *= 2;
    camera.gain = 0.7;
    camera.toneCurve.resize(4);
    Write(*settings, camera);
    if (!settings->saveReplacing(path, &problem)) throw std::runtime_error(problem.toString());
    Print(Read(mox::Profile::open(path).value()));
}

}  // namespace

int main(int argc, char** argv) {
    try {
        if (argc != 3) throw std::runtime_error("usage: camera <data folder> <scratch folder>");
        const fs::path path = fs::path(argv[2]) / "camera.xml";
        fs::create_directories(argv[2]);
        fs::copy_file(fs::path(argv[1]) / "camera.xml", path, fs::copy_options::overwrite_existing);
        Run(path);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "camera: %s\n", error.what());
        return 1;
    }
}
