#pragma once

#include <array>
#include <cmath>
#include <cstddef>

/// Systems of linear equations with a small symmetric positive definite matrix. Nothing is pivoted or tested: where the
/// matrix is singular, what comes out is not finite or means nothing.
namespace orlix::maths
{

template <std::size_t N>
using Vector = std::array<double, N>;
template <std::size_t N>
using Matrix = std::array<Vector<N>, N>; ///< row by row

/// The lower triangle L with matrix = L * L^T; zeros above its diagonal.
template <std::size_t N>
Matrix<N> choleskyDecomposition(const Matrix<N>& matrix)
{
    Matrix<N> lower{};
    for (std::size_t i = 0; i < N; ++i) {
        for (std::size_t j = 0; j <= i; ++j) {
            double sum = matrix[i][j];
            for (std::size_t k = 0; k < j; ++k) {
                sum -= lower[i][k] * lower[j][k];
            }
            lower[i][j] = i == j ? std::sqrt(sum) : sum / lower[j][j];
        }
    }
    return lower;
}

/// The x with lower * lower^T * x = b: forward and back substitution.
template <std::size_t N>
Vector<N> choleskySolve(const Matrix<N>& lower, const Vector<N>& b)
{
    Vector<N> x = b;
    for (std::size_t i = 0; i < N; ++i) {
        for (std::size_t k = 0; k < i; ++k) {
            x[i] -= lower[i][k] * x[k];
        }
        x[i] /= lower[i][i];
    }
    for (std::size_t i = N; i-- > 0;) {
        for (std::size_t k = i + 1; k < N; ++k) {
            x[i] -= lower[k][i] * x[k];
        }
        x[i] /= lower[i][i];
    }
    return x;
}

} // namespace orlix::maths
