#pragma once

namespace sim {

/// How a ToF sensor takes its pictures: what its settings come down to.
struct TofMode {
    /// "IQMIX" takes them as they are; "LABELIZE" leaves out what it can't be sure of; "M2MIX" mixes
    /// neighbours, which halves the noise and smears edges.
    enum Mix { Iqmix = 0, Labelize = 1, M2mix = 2 };

    Mix mix = Iqmix;
    bool dualFrequency = false; ///< half the noise
    float nearest = 0; ///< metres; nothing is read nearer
    float farthest = 0; ///< nor farther
    float noise = 0; ///< metres of deviation at two metres

    /// The first family: the range comes by distance mode (0 short, 1 middle, 2 long).
    static TofMode ofFirstFamily(int workMode, int distanceMode);
    /// The second: the range comes by frequency.
    static TofMode ofSecondFamily(int workMode);

    /// Work modes by number: "IQMIX_DF", "IQMIX_SF", "LABELIZE_DF", "LABELIZE_SF", "M2MIX_DF", "M2MIX_SF".
    static constexpr int workModes = 6;
    static constexpr int distanceModes = 3;
};

} // namespace sim
