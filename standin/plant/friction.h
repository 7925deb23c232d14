// The friction factor of Darcy and Weisbach.

#pragma once

namespace standin {

/// A friction factor times its Reynolds number, which stays finite at rest, and how it grows with that
/// number.
struct Friction {
    double factor;  ///< f Re
    double slope;   ///< d(f Re) / dRe
};

/// `reynolds` is 0 or above, `roughness` the wall's over the diameter. Below Re 2000 the flow is laminar, f
/// is 64/Re. Above 4000 f is that of P. K. Swamee and A. K. Jain (1976), explicit for Colebrook and White's.
/// Between them a cubic, E. Dunlop's of 1991, joins the two.
Friction FrictionAt(double reynolds, double roughness);

}  // namespace standin
