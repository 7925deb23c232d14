import tseslint from "typescript-eslint";
import shared from "../typescript/eslint.shared.js";

export default shared(tseslint, true);
