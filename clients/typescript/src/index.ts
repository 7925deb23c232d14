// A client of VornServer for browsers and Node.

export * from "./contract.js";
export { contract } from "./contract_data.js";
export * from "./json.js";
export * from "./nets.js";
export * from "./numbers.js";
export * from "./project.js";
export * from "./report.js";
export * from "./service.js";
export * from "./values.js";
export * from "./verdict.js";
