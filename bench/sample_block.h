#pragma once
// A block that holds a FID of a few lines, ready for the transform form.

#include "core/asker.h"
#include "fid/fft_pipeline.h"
#include "session/startup.h"

#include <cmath>
#include <memory>

namespace nmr::bench {

class SilentAsker : public Asker {
public:
    Button Message(const MessageBox& box) override { return box.buttons.front(); }
    std::optional<FileChoice> File(const FileDialog&) override { return std::nullopt; }
    FormAnswer Form(const FormRequest&) override { return {"CANCEL", {}}; }
    void Beep() override {}
    void Notice(const std::string&) override {}
};

class SampleBlock {
public:
    explicit SampleBlock(std::int32_t points) : g_(std::make_unique<GlobalBlock>())
    {
        Start_Batch(*g_);
        DataSet& set = g_->Slots[0];
        ParamBlock& par = set.par;
        par.POINT = par.FIDPoints = points;
        par.FREQU = 10000;
        par.ObsCenter = par.FileRefMHz = 500;
        par.OBNUC = "1H";
        static_cast<void>(AllocateSpecBuffer(*g_, points, 0));
        for (std::int32_t i = 0; i < points; ++i)
            for (double hz : {-3000.0, -1234.5, 250.0, 1111.0, 3500.0}) {
                const double t = i / 10000.0, size = 1000 * std::exp(-2 * t);
                set.spec.DataRe[0][static_cast<std::size_t>(i)] +=
                    static_cast<float>(size * std::cos(2 * kPi * hz * t));
                set.spec.DataIm[0][static_cast<std::size_t>(i)] -=
                    static_cast<float>(size * std::sin(2 * kPi * hz * t));
            }
        static_cast<void>(Write_FID_Work(*g_));
    }
    GlobalBlock& g() { return *g_; }
    Asker& asker() { return asker_; }

private:
    std::unique_ptr<GlobalBlock> g_;
    SilentAsker asker_;
};

} // namespace nmr::bench
