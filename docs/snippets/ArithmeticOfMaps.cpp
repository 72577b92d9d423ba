#include "Scan.h"

int main()
{
    //! [snippet]
    // Two maps of the same size; the second one begins 4 mm further right, and its count 0 lies at 1 mm.
    Zvl::Surface first = MakeScan([](double x, double) { return 0.1 * x; });
    Zvl::Surface second = MakeScan([](double, double) { return 0.0; });
    second.offset.x = 4.0;
    second.offset.z = 1.0;

    Zvl::Surface common;
    Zvl::Arithmetics::Apply(Zvl::ArithmeticOperator::Subtract, Zvl::ArithmeticLogic::Intersection, first, second,
                            common);
    std::printf("%zu columns from %.1f mm\n", qArray2_Length(common.layers[0], 1), common.offset.x);
    Expect(qArray2_Length(common.layers[0], 1) == 120 && IsNear(common.offset.x, 4.0, 1e-12));
    Expect(HeightAt(common, 0, 0) == 400 - 1000); // world heights are subtracted: 0.4 mm - 1 mm

    Zvl::Surface all;
    Zvl::Arithmetics::Apply(Zvl::ArithmeticOperator::Subtract, Zvl::ArithmeticLogic::Union, first, second, all);
    Expect(qArray2_Length(all.layers[0], 1) == 200);
    Expect(HeightAt(all, 0, 199) == 1000); // second only: its own height, not its negative
    //! [snippet]
}
