import tseslint from "typescript-eslint";
import shared from "../clients/typescript/eslint.shared.js";

export default shared(tseslint);
