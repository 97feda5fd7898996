// Validates several workbooks in one Node.js process: the validator's start costs seconds, its check of a
// small workbook a fraction of one. Prints one JSON object, file name -> list of errors, or
// {"file": {"failed": "text"}} for a file it could not read.
// Usage: node validate_files.mjs <validator package index.js> <file>...
import { readFile } from "node:fs/promises";
import { pathToFileURL } from "node:url";

const [indexPath, ...files] = process.argv.slice(2);
const validator = await import(pathToFileURL(indexPath).href);
const validate = validator.default;
const results = {};
for (const file of files) {
  try {
    const bytes = new Uint8Array(await readFile(file));
    const errors = await validate(bytes, "xlsx");
    results[file] = errors.map((error) => ({
      id: error.id,
      description: error.description,
      part: error.path ? error.path.partUri : "",
      xpath: error.path ? error.path.xpath : "",
    }));
  } catch (error) {
    results[file] = { failed: String(error && error.stack ? error.stack : error) };
  }
}
process.stdout.write(JSON.stringify(results));
process.exit(0);
