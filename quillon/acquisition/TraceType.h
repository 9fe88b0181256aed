#pragma once

namespace quillon {

// The kind of detector a trace comes from. A function classifies itself from its type and
// description texts and stamps the kind on every chromatogram it reads; chromatograms, spectra and
// metabolites test it.
enum TRACE_TYPE {
    MS_TRACE = 0,     // mass-spectrometry data
    PDA_TRACE = 1,    // photodiode-array (diode-array detector) data
    ANALOG_TRACE = 2, // analog channel data
};

} // namespace quillon
