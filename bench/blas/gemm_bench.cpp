// SPDX-License-Identifier: MIT
// How fast is a product, beside each library found here? One benchmark a library, transposition pair and shape:
//     gemm_bench --benchmark_filter='NN/512' --benchmark_repetitions=5 --benchmark_enable_random_interleaving=true
#include "blas/problem_bench.h"

int main(int argc, char** argv)
{
    const auto libraries = ork::bench::all_libraries();
    constexpr int squares[] = {4, 8, 16, 32, 64, 100, 128, 256, 512, 1024};
    constexpr int skinny[][3] = {{1000, 1000, 4}, {8, 8, 10000}, {1000, 4, 1000}, {1, 1000, 1000}, {5, 7, 300}};
    const auto add = [&](const char* trans, int m, int n, int k) {
        const std::string shape = m == n && n == k
                                      ? std::to_string(n)
                                      : std::to_string(m) + "x" + std::to_string(n) + "x" + std::to_string(k);
        ork::bench::add(libraries, std::string("dgemm/") + trans + "/" + shape, "flops", [=] {
            return ork::peers::make_gemm({'d', trans[0], trans[1], m, n, k, 1, 0});
        });
    };
    for (const char* trans : {"NN", "NT", "TN", "TT"}) {
        for (const int n : squares) add(trans, n, n, n);
        for (const auto& [m, n, k] : skinny) add(trans, m, n, k);
    }
    return ork::bench::run(argc, argv);
}
