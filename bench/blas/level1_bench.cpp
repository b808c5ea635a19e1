// SPDX-License-Identifier: MIT
// How fast is a vector routine, beside each library found here? One benchmark a library, routine and length:
//     level1_bench --benchmark_filter='/ddot/1001'
#include "blas/problem_bench.h"

int main(int argc, char** argv)
{
    const auto libraries = ork::bench::all_libraries();
    for (const std::string& routine : ork::peers::level1_routines())
        for (const int n : {7, 32, 100, 1001, 16000, 250000, 8000000})
            ork::bench::add(libraries, routine + "/" + std::to_string(n), "bytes", [routine, n] {
                return ork::peers::make_level1({routine, n, 1, 1});
            });
    return ork::bench::run(argc, argv);
}
