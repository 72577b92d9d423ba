#include "Scan.h"

#include <array>
#include <vector>

int main()
{
    //! [snippet]
    // A sagging beam: y = 1 - 0.02 (x - 1000) + 0.003 (x - 1000)^2, measured from x = 1000 mm to 1010 mm.
    std::vector<qPoint64f> shifted;
    for (int index = 0; index <= 100; ++index)
    {
        const double x = 0.1 * index; // x - 1000: powers of 1000 and 1010 are too much alike
        shifted.push_back({x, 1.0 - 0.02 * x + 0.003 * x * x});
    }

    std::array<double, 3> coefficients{};
    Expect(Zvl::FitPolynomial(shifted.data(), shifted.size(), 2, coefficients.data()) == 0);
    std::printf("%.4f %+.4f x %+.4f x^2\n", coefficients[0], coefficients[1], coefficients[2]);
    Expect(IsNear(coefficients[2], 0.003, 1e-9));

    const double sag = Zvl::CalculatePolynomialValue(coefficients.data(), 2, 5.0);
    Expect(IsNear(sag, 0.975, 1e-9));

    // Two points cannot carry a parabola.
    Expect(Zvl::FitPolynomial(shifted.data(), 2, 2, coefficients.data()) == -1);
    //! [snippet]
}
