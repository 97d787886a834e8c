#include "fuzz/seed_files.h"
#include "samples/vendor_samples.h"

using namespace nmr::test;

int main(int argc, char** argv)
{
    const std::string zero(1, '\0');
    const std::string array = SampleProcpar(
        {{"array", {"\"(d2,p1),pw\""}, 2}, {"d2", {"1", "2"}, 3}, {"p1", {"3", "4"}, 6}, {"lsfid", {"2"}, 7}});
    return WriteSeeds(
        argc, argv,
        {"0" + SampleProcpar() + zero + VarianFile({.word = VarianWord::i16}).str(),
         "0" + array + zero + VarianFile({.blocks = 4, .heads = 2}).str(),
         "0" + SampleProcpar({{"rfl", {"100"}}}) + zero +
             VarianFile({.word = VarianWord::f32, .blocks = 2, .padding = 40}).str(),
         "1" + SampleProcpar() + zero + VarianFile({.word = VarianWord::f32, .status = 0x1B}).str(),
         "1" + SampleProcpar() + zero + VarianFile({.word = VarianWord::f32, .status = 0x0B, .complex = false}).str()});
}
