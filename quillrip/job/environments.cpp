#include "quillrip/job/environments.h"

#include "quillrip/base/paper.h"

#include <algorithm>
#include <optional>

namespace quillrip {

namespace {

// PAPER, with CUSTOM's own lengths; nothing when the job language said nothing useful.
std::optional<stream::PaperSize> paperOf(const stream::PjlEnvironment& variables)
{
    if (!variables.paperCode)
        return std::nullopt;
    if (*variables.paperCode != kCustomPaperCode)
        return stream::paperSizeOfCode(*variables.paperCode);
    if (!variables.customWidth || !variables.customLength)
        return std::nullopt;
    return stream::PaperSize { *variables.customWidth, *variables.customLength };
}

} // namespace

pcl::Environment pclEnvironment(const stream::PjlEnvironment& variables, const stream::Part& part)
{
    pcl::Environment environment;
    if (paperOf(variables)) {
        environment.pageSize = *variables.paperCode;
        environment.isPaperNamed = true;
    }
    environment.customWidth = variables.customWidth.value_or(environment.customWidth);
    environment.customLength = variables.customLength.value_or(environment.customLength);
    environment.orientation = variables.orientation.value_or(environment.orientation);
    environment.formLines = variables.formLines.value_or(environment.formLines);
    constexpr double kFineRaster = 1200;
    environment.resolution = variables.hasFineRaster ? kFineRaster : variables.resolution.value_or(0);
    environment.symbolSet = variables.symbolSet.value_or(environment.symbolSet);
    environment.fontNumber = variables.fontNumber.value_or(environment.fontNumber);
    environment.pitch = variables.pitch.value_or(environment.pitch);
    environment.pointSize = variables.pointSize.value_or(environment.pointSize);
    environment.lineTermination = variables.lineTermination.value_or(environment.lineTermination);
    environment.isLanguageNamed = part.isNamed;
    if (part.isInkjetRaster)
        environment.family = pcl::PrinterFamily::InkjetRaster;
    else if (part.isInkjet)
        environment.family = pcl::PrinterFamily::Inkjet;
    return environment;
}

pclxl::Environment pclXlEnvironment(const stream::PjlEnvironment& variables)
{
    pclxl::Environment environment;
    if (const auto paper = paperOf(variables)) {
        environment.paperWidth = paper->width;
        environment.paperHeight = paper->height;
    }
    environment.orientation = variables.orientation.value_or(environment.orientation);
    return environment;
}

hpgl::Environment plotEnvironment(const stream::PjlEnvironment& variables)
{
    hpgl::Environment environment;
    if (const auto paper = paperOf(variables)) {
        // A plot's x axis runs along the paper's long edge unless the job says otherwise.
        const bool isPortrait = variables.orientation == 0;
        environment.paperWidth = isPortrait ? paper->width : std::max(paper->width, paper->height);
        environment.paperHeight = isPortrait ? paper->height : std::min(paper->width, paper->height);
    }
    return environment;
}

} // namespace quillrip
