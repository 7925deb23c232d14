// VornChartCache, the closed chart library.

#pragma once

/// Has the project's chart written to `../AlgProject/NAME/NAME_chart.txt`, which stands there 2500 ms later.
void Chart_PngSave(const char* name);
