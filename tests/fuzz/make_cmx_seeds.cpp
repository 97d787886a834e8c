#include "fuzz/seed_files.h"
#include "samples/vendor_samples.h"

using namespace nmr::test;

int main(int argc, char** argv)
{
    const std::string zero(1, '\0');
    const std::string array = "array_num_values_tau=2\narray_dim_tau=2\ntau[0]=1m\ntau[1]=5m\n";
    return WriteSeeds(
        argc, argv,
        {SampleAcq() + zero + "ac=3\nend_date=12/29/14\n" + zero + SampleProc() + zero + CmxData().str(),
         SampleAcq(array) + zero + "use_array=1\n" + zero + "datatype=1\n" + zero + CmxData(16, 2).str()});
}
