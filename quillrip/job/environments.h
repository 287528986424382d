#pragma once

#include "quillrip/hpgl/plot_file.h"
#include "quillrip/pcl/environment.h"
#include "quillrip/pclxl/interpreter.h"
#include "quillrip/stream/job_reader.h"
#include "quillrip/stream/pjl_environment.h"

namespace quillrip {

/// What the job language's variables mean to each interpreter.
pcl::Environment pclEnvironment(const stream::PjlEnvironment& variables, const stream::Part& part);
pclxl::Environment pclXlEnvironment(const stream::PjlEnvironment& variables);
hpgl::Environment plotEnvironment(const stream::PjlEnvironment& variables);

} // namespace quillrip
