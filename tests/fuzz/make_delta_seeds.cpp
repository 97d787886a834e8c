#include "fuzz/seed_files.h"
#include "samples/vendor_samples.h"

using namespace nmr::test;

int main(int argc, char** argv)
{
    DeltaSet filtered;
    filtered.values.push_back(DeltaText("orders", "2 5 7"));
    filtered.values.push_back(DeltaText("factors", "2  2"));
    return WriteSeeds(
        argc, argv,
        {DeltaSetFile(filtered).str(), DeltaSetFile({.little = false, .float32 = true}).str(),
         DeltaSetFile({.axis_type = 1, .unit = 26, .start = 10, .stop = -5}).str(),
         DeltaSetFile({.prefix = 241, .unit = 13, .stored = 24, .first = 3, .last = 18, .stop = -2}).str()});
}
