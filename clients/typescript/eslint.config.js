import tseslint from "typescript-eslint";
import shared from "./eslint.shared.js";

export default shared(tseslint);
