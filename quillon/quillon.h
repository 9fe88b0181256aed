#pragma once

// Everything the library offers. Include this header and link quillon::quillon.

#include <quillon/platform/Array.h>
#include <quillon/platform/AtomicFile.h>
#include <quillon/platform/ChartSettings.h>
#include <quillon/platform/Exception.h>
#include <quillon/platform/File.h>
#include <quillon/platform/FileException.h>
#include <quillon/platform/HostHooks.h>
#include <quillon/platform/NumberConversion.h>
#include <quillon/platform/Numbers.h>
#include <quillon/platform/Object.h>
#include <quillon/platform/Point.h>
#include <quillon/platform/ProcessInfo.h>
#include <quillon/platform/ProfileFile.h>
#include <quillon/platform/StdioFile.h>
#include <quillon/platform/StdioFileS.h>
#include <quillon/platform/String.h>
#include <quillon/platform/Types.h>

#include <quillon/chemistry/Elements.h>
#include <quillon/chemistry/Formula.h>
#include <quillon/chemistry/IsotopeModel.h>
#include <quillon/chemistry/IsotopePatterns.h>

#include <quillon/file/DelimitFile.h>
#include <quillon/file/FieldFormat.h>
#include <quillon/file/FileRecord.h>

#include <quillon/acquisition/ChromatoData.h>
#include <quillon/acquisition/ChromatogramPeak.h>
#include <quillon/acquisition/DoubleArray.h>
#include <quillon/acquisition/FloatArray.h>
#include <quillon/acquisition/FunctionData.h>
#include <quillon/acquisition/IntArray.h>
#include <quillon/acquisition/MassesData.h>
#include <quillon/acquisition/ParametersData.h>
#include <quillon/acquisition/PeakData.h>
#include <quillon/acquisition/PeakList.h>
#include <quillon/acquisition/ResultsData.h>
#include <quillon/acquisition/SpectrumData.h>
#include <quillon/acquisition/TraceType.h>

#include <quillon/fragments/AnalysisSupport.h>
#include <quillon/fragments/FragmentAnalysis.h>
#include <quillon/fragments/FragmentList.h>
#include <quillon/fragments/NeutralLossEntry.h>

#include <quillon/companions/BroEntry.h>
#include <quillon/companions/Molfile.h>
#include <quillon/companions/TarnwickIniInterface.h>

#include <quillon/plate/PlateDesc.h>
#include <quillon/plate/PlateLayout.h>
#include <quillon/plate/Reference.h>
#include <quillon/plate/VialRef.h>

#include <quillon/metabolites/CompoundData.h>
#include <quillon/metabolites/Compounds.h>
#include <quillon/metabolites/DivBroParams.h>
#include <quillon/metabolites/ElementalResultsData.h>
#include <quillon/metabolites/MSMSCorrelation.h>
#include <quillon/metabolites/MSMSMetabolite.h>
#include <quillon/metabolites/MetaboliteData.h>
#include <quillon/metabolites/MetaboliteDisplay.h>
#include <quillon/metabolites/MetaboliteNames.h>
#include <quillon/metabolites/ResultFilter.h>

#include <quillon/document/MetaboliteEdit.h>
#include <quillon/document/PeakIndex.h>
#include <quillon/document/ReportSave.h>
#include <quillon/document/SampleData.h>
#include <quillon/document/Samples.h>
#include <quillon/file/ReadReport.h>

#include <quillon/stability/FirstOrderFit.h>
#include <quillon/stability/MetabolicStabilityInfo.h>
