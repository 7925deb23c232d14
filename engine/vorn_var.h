// VornVar, the variable store: the closed library that holds the values of all open projects, for the project
// as a whole (`Glo`), for each module (`Mod`) and node (`Nod`), and for each of their ports (`Port`).
//
// Numbers come from `NameParsing` and are handed on unchanged: slot, element, port, variable index. Any set
// that it reported as found is valid. An array has exactly 8 entries on both sides. A read always gives a
// value and a write gives nothing back. Each single access is sound beside the running simulation; nothing is
// atomic across calls. The value family gives the current value of a variable, running or not.

#pragma once

/// Entries of each array variable.
inline constexpr int ArrayEntries = 8;

// ---- Reads ----

double GloGet(int slot, int variable);
int GloIntGet(int slot, int variable);
void GloAryGet(int slot, int variable, double* values);
void GloIntAryGet(int slot, int variable, int* values);

double ModGet(int slot, int module, int variable);
int ModIntGet(int slot, int module, int variable);
void ModAryGet(int slot, int module, int variable, double* values);
void ModIntAryGet(int slot, int module, int variable, int* values);
double ModPortGet(int slot, int module, int port, int variable);
/// A port has one array and one only: no variable index.
void ModPortAryGet(int slot, int module, int port, double* values);

double NodGet(int slot, int node, int variable);
int NodIntGet(int slot, int node, int variable);
void NodAryGet(int slot, int node, int variable, double* values);
void NodIntAryGet(int slot, int node, int variable, int* values);
double NodPortGet(int slot, int node, int port, int variable);
void NodPortAryGet(int slot, int node, int port, double* values);

// ---- Writes ----

void w_GloSet(int slot, int variable, double value);
void w_GloIntSet(int slot, int variable, int value);
void w_GloArySet(int slot, int variable, const double* values);
void w_GloIntArySet(int slot, int variable, const int* values);

void w_ModSet(int slot, int module, int variable, double value);
void w_ModIntSet(int slot, int module, int variable, int value);
void w_ModArySet(int slot, int module, int variable, const double* values);
void w_ModIntArySet(int slot, int module, int variable, const int* values);
void w_ModPortSet(int slot, int module, int port, int variable, double value);
void w_ModPortArySet(int slot, int module, int port, const double* values);

void w_NodSet(int slot, int node, int variable, double value);
void w_NodIntSet(int slot, int node, int variable, int value);
void w_NodArySet(int slot, int node, int variable, const double* values);
void w_NodIntArySet(int slot, int node, int variable, const int* values);
void w_NodPortSet(int slot, int node, int port, int variable, double value);
void w_NodPortArySet(int slot, int node, int port, const double* values);

// ---- Layers of an element's values: model, cache sets 0 to 2, run ----

/// Copies the model that the last `Model_DB_Read` of that type brought in into a set of the module.
void Pjt_Modu_ModelToPch(int slot, int type, int module, int set);
/// Copy a cache set into the run values, and the run values into a cache set.
void Pjt_Modu_PchToRun(int slot, int module, int set);
void Pjt_Node_PchToRun(int slot, int node, int set);
void Pjt_Modu_RunToPch(int slot, int module, int set);
void Pjt_Node_RunToPch(int slot, int node, int set);
