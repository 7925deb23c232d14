// The ESLint settings of the TypeScript client, the console and the tool server. Each gives its own typescript-eslint.

const unsafe = ["argument", "assignment", "call", "member-access"];

/** The settings; in tests, replies may be looked into freely where `freeTests`. */
export default (tseslint, freeTests = false) => tseslint.config(
    { ignores: ["node_modules", "dist", "*.mjs", "eslint.*.js", "src/contract_data.ts"] },
    ...tseslint.configs.strictTypeChecked,
    {
        languageOptions: { parserOptions: { project: "./tsconfig.json" } },
        rules: {
            "@typescript-eslint/restrict-template-expressions": ["error", { allowNumber: true }],
            "@typescript-eslint/no-confusing-void-expression": ["error", { ignoreArrowShorthand: true }],
            "@typescript-eslint/no-floating-promises": ["error", { allowForKnownSafeCalls: [{ from: "package", name: ["test"], package: "node:test" }] }],
            "max-lines": ["error", 400],
            "max-lines-per-function": ["error", { max: 90, skipBlankLines: true, skipComments: true }],
        },
    },
    ...(freeTests ? [{ files: ["test/**"], rules: Object.fromEntries(unsafe.map((each) => [`@typescript-eslint/no-unsafe-${each}`, "off"])) }] : []),
);
