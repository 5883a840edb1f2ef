#include "contracts/ViewUnits.h"

namespace orvane {

TVPolyline2D::TVPolyline2D(const TDynPoints2D& Points) : TVPoint2DList(Points) {}

}  // namespace orvane
