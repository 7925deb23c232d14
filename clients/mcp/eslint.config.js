import tseslint from "typescript-eslint";

export default tseslint.config(
    { ignores: ["node_modules", "dist", "*.mjs", "eslint.config.js"] },
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
    {
        files: ["test/**"], // what tools answer is looked into freely
        rules: Object.fromEntries(["argument", "assignment", "call", "member-access"].map((each) => [`@typescript-eslint/no-unsafe-${each}`, "off"])),
    },
);
