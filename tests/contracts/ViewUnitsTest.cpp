#include <gtest/gtest.h>

#include "contracts/PrimitiveCodes.h"
#include "contracts/ViewUnits.h"

namespace orvane {
namespace {

TEST(ViewUnits, PolylineHoldsItsPointsInOrderAndListsCheckIndices)
{
    const TVPolyline2D empty;
    EXPECT_EQ(empty.Count(), 0);
    const TVPolyline2D line(TDynPoints2D{{1, 2}, {3, 4}, {1, 2}});
    ASSERT_EQ(line.Count(), 3);
    EXPECT_EQ(line.GetItem(1), TPoint2D(3, 4));
    EXPECT_EQ(line.Last(), TPoint2D(1, 2));
    EXPECT_THROW(line.GetItem(3), EArgumentOutOfRangeException);

    // A simplified list replaces a polyline's points as its callers do it.
    TVPolyline2D target(TDynPoints2D{{0, 0}, {5, 5}});
    target.Clear();
    target.AddRange(line);
    EXPECT_EQ(target.Count(), 3);
}

TEST(ViewUnits, UnitListOwnsItsUnitsByValue)
{
    TViewUnitList units;
    {
        TViewUnit unit;
        unit.Points2D.Add({0, 1});
        unit.Points3D.Add({0, 1, 2});
        unit.Normals.Add({0, 0, 1});
        unit.DrawMode = GL_QUADS;
        units.Add(unit);
    }
    ASSERT_EQ(units.Count(), 1);
    EXPECT_EQ(units.First().Points2D.First(), TPoint2D(0, 1));
    EXPECT_EQ(units.GetItem(0).Normals.Count(), units.GetItem(0).Points3D.Count());
    EXPECT_EQ(units.First().DrawMode, GL_QUADS);
    EXPECT_THROW(units.GetItem(1), EArgumentOutOfRangeException);
}

}  // namespace
}  // namespace orvane
